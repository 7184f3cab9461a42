package demo.greeter;

import demo.library.Words;

/** Needs the library. */
public final class Greeter implements Runnable {
    @Override
    public void run() {
        System.out.println("greeter: " + Words.greeting("world"));
    }
}
