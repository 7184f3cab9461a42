import java.io.ByteArrayOutputStream;
import java.io.DataInputStream;
import java.io.IOException;
import java.io.OutputStream;
import java.net.InetSocketAddress;
import java.net.Socket;
import java.nio.charset.StandardCharsets;
import java.util.regex.Matcher;
import java.util.regex.Pattern;

/** What a game server says of itself. The exchange is that of GetServerPlayerInfo, and a ping. */
final class ServerStatus {
    private static final int HANDSHAKE = 0;
    private static final int ASK_FOR_STATUS = 1;
    private static final int PING = 1;
    private static final int LONGEST_TEXT = 1 << 20;

    private final int online;
    private final int most;

    private ServerStatus(String text) throws IOException {
        online = number(text, "online");
        most = number(text, "max");
    }

    /** Blocks; each of its waits lasts @p waitMs at most. */
    static ServerStatus ask(String host, int port, int waitMs) throws IOException {
        try (Socket socket = new Socket()) {
            socket.connect(new InetSocketAddress(host, port), waitMs);
            socket.setSoTimeout(waitMs);
            OutputStream out = socket.getOutputStream();
            DataInputStream in = new DataInputStream(socket.getInputStream());
            out.write(packet(handshake(host, port)));
            out.write(packet(new byte[] {HANDSHAKE}));
            ServerStatus status = new ServerStatus(readStatus(in));
            ping(out, in);
            return status;
        }
    }

    @Override
    public String toString() {
        return online + " of " + most + " players are there";
    }

    private static byte[] handshake(String host, int port) throws IOException {
        byte[] name = host.getBytes(StandardCharsets.UTF_8);
        ByteArrayOutputStream bytes = new ByteArrayOutputStream();
        bytes.write(HANDSHAKE);
        bytes.write(0); // protocol version
        writeInteger(bytes, name.length);
        bytes.write(name);
        bytes.write(port & 0xff); // the low byte first
        bytes.write(port >> 8);
        bytes.write(ASK_FOR_STATUS);
        return bytes.toByteArray();
    }

    private static String readStatus(DataInputStream in) throws IOException {
        readInteger(in); // length of the packet
        readInteger(in); // its kind
        int length = readInteger(in);
        if (length < 0 || length > LONGEST_TEXT) {
            throw new IOException("a status of " + length + " bytes");
        }
        byte[] text = new byte[length];
        in.readFully(text);
        return new String(text, StandardCharsets.UTF_8);
    }

    private static void ping(OutputStream out, DataInputStream in) throws IOException {
        byte[] ping = {PING, 1, 2, 3, 4, 5, 6, 7, 8};
        out.write(packet(ping));
        for (byte expected : packet(ping)) {
            if (in.readByte() != expected) {
                throw new IOException("the server's echo differs");
            }
        }
    }

    private static byte[] packet(byte[] content) throws IOException {
        ByteArrayOutputStream bytes = new ByteArrayOutputStream();
        writeInteger(bytes, content.length);
        bytes.write(content);
        return bytes.toByteArray();
    }

    private static void writeInteger(ByteArrayOutputStream bytes, int value) {
        for (; value > 0x7f; value >>>= 7) {
            bytes.write(value & 0x7f | 0x80);
        }
        bytes.write(value);
    }

    private static int readInteger(DataInputStream in) throws IOException {
        int value = 0;
        for (int shift = 0; shift < 35; shift += 7) {
            int next = in.readByte();
            value |= (next & 0x7f) << shift;
            if (next >= 0) {
                break;
            }
        }
        return value;
    }

    private static int number(String text, String key) throws IOException {
        Matcher matcher = Pattern.compile('"' + key + "\"\\s*:\\s*(\\d{1,9})\\b").matcher(text);
        if (!matcher.find()) {
            throw new IOException("a status without \"" + key + '"');
        }
        return Integer.parseInt(matcher.group(1));
    }
}
