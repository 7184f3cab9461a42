/** Run by DeployJavaResTask: a Java that prints these properties works. */
public final class JavaCheck {
    public static void main(String[] arguments) {
        for (String name : new String[] {"os.arch", "java.version"}) {
            System.out.println(name + "=" + System.getProperty(name));
        }
    }
}
