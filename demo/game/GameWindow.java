import java.awt.Canvas;
import java.awt.Color;
import java.awt.Dimension;
import java.awt.Frame;
import java.awt.Graphics;

/** The window of the game: a landscape of blocks. It holds no text, so that no font is needed. */
final class GameWindow extends Frame {
    private static final int BLOCK = 32;
    private static final int COLUMNS = 20;
    private static final int ROWS = 12;

    GameWindow(String title) {
        super(title);
        add(new Landscape());
        pack();
    }

    private static final class Landscape extends Canvas {
        Landscape() {
            setPreferredSize(new Dimension(COLUMNS * BLOCK, ROWS * BLOCK));
        }

        @Override
        public void paint(Graphics graphics) {
            for (int column = 0; column < COLUMNS; column++) {
                int ground = (int) (7 + 2 * Math.sin(column / 3.0));
                for (int row = 0; row < ROWS; row++) {
                    graphics.setColor(colorOf(row - ground));
                    graphics.fillRect(column * BLOCK, row * BLOCK, BLOCK - 1, BLOCK - 1);
                }
            }
        }

        private static Color colorOf(int depth) {
            if (depth < 0) {
                return new Color(140, 190, 250);
            }
            return depth == 0 ? new Color(90, 160, 60) : new Color(120, 85, 60);
        }
    }
}
