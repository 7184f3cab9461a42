import java.awt.AWTError;
import java.awt.HeadlessException;
import java.io.File;
import java.io.IOException;
import java.net.MalformedURLException;
import java.net.URL;
import java.net.URLClassLoader;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.Arrays;
import java.util.HashMap;
import java.util.Map;
import java.util.ServiceLoader;
import java.util.zip.ZipFile;

/**
 * A game client as small as can be: it loads its mods, opens its packs, asks its server who is
 * there, plays for some seconds and ends. It tells what it does on its standard output.
 */
public final class DemoGame {
    private static final int WAIT_MS = 2000;

    private final Map<String, String> arguments = new HashMap<>();

    private DemoGame(String[] words) {
        for (int i = 0; i + 1 < words.length; i += 2) {
            arguments.put(words[i], words[i + 1]);
        }
    }

    public static void main(String[] words) {
        try {
            new DemoGame(words).run();
        } catch (Throwable failure) {
            failure.printStackTrace();
            System.exit(1); // the window's thread would keep the process
        }
        System.exit(0);
    }

    private void run() throws IOException, InterruptedException {
        tell("player", argument("--username") + ", session " + argument("--session"));
        loadMods();
        openPacks("resource pack", "resourcepacks", "pack.mcmeta");
        openPacks("shader pack", "shaderpacks", "shaders/final.fsh");
        openWindow();
        joinServer();
        play();
    }

    private String argument(String name) {
        String value = arguments.get(name);
        if (value == null) {
            throw new IllegalArgumentException(name + " is missing");
        }
        return value;
    }

    private static void tell(String what, String text) {
        System.out.println(what + ": " + text);
    }

    /** Every mod brings a Runnable, and may use the classes of other mods. */
    private void loadMods() throws MalformedURLException {
        File[] files = filesIn("mods");
        URL[] urls = new URL[files.length];
        for (int i = 0; i < files.length; i++) {
            tell("mod", files[i].getName());
            urls[i] = files[i].toURI().toURL();
        }
        ClassLoader loader = new URLClassLoader(urls, DemoGame.class.getClassLoader());
        ServiceLoader.load(Runnable.class, loader).forEach(Runnable::run);
    }

    private void openPacks(String what, String folder, String entry) throws IOException {
        for (File file : filesIn(folder)) {
            try (ZipFile pack = new ZipFile(file)) {
                if (pack.getEntry(entry) == null) {
                    throw new IOException(file + " holds no " + entry);
                }
                String state = isSelected(file) ? "selected" : "not selected";
                tell(what, file.getName() + ", " + pack.size() + " files, " + state);
            }
        }
    }

    /** The launcher writes the packs to use into the game's options. */
    private boolean isSelected(File pack) throws IOException {
        for (String name : new String[] {"options.txt", "optionsshaders.txt"}) {
            Path options = Path.of(argument("--gameDir"), name);
            if (Files.exists(options) && Files.readString(options).contains(pack.getName())) {
                return true;
            }
        }
        return false;
    }

    private File[] filesIn(String folder) {
        File[] files = new File(argument("--gameDir"), folder).listFiles(File::isFile);
        if (files == null) {
            return new File[0];
        }
        Arrays.sort(files);
        return files;
    }

    private static void openWindow() {
        try {
            new GameWindow("A game without a title yet").setVisible(true);
            tell("window", "open");
        } catch (HeadlessException | AWTError | LinkageError failure) {
            tell("window", "none, there is no display");
        }
    }

    private void joinServer() {
        String host = arguments.get("--server");
        if (host == null || !arguments.containsKey("--port")) {
            tell("server", "none given");
            return;
        }
        try {
            tell("server", ServerStatus.ask(host, Integer.parseInt(argument("--port")), WAIT_MS)
                    .toString());
        } catch (IOException failure) {
            tell("server", "out of reach, playing alone: " + failure.getMessage());
        }
    }

    private void play() throws InterruptedException {
        long milliseconds = Long.parseLong(argument("--playMilliseconds"));
        tell("playing", milliseconds + " ms");
        Thread.sleep(milliseconds);
        if (argument("--ending").equals("crash")) {
            throw new IllegalStateException("the demo world fell apart");
        }
        tell("end", "see you");
    }
}
