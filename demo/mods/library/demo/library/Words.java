package demo.library;

/** What other mods need. */
public final class Words {
    private Words() {}

    public static String greeting(String who) {
        return "hello, " + who;
    }
}
