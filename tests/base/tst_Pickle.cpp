#include <QtTest>

#include "base/Pickle.h"
#include "base/PickleIterator.h"

class tst_Pickle : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void writesTheLayout()
    {
        Pickle pickle;
        QCOMPARE(pickle.capacity(), std::size_t(64));
        QVERIFY(pickle.WriteData("0123456789abcdef", 16) &&
                pickle.WriteUInt64(0x1122334455667788) && pickle.WriteBool(true) &&
                pickle.WriteBool(false));
        QVERIFY(!pickle.WriteData("x", -1));
        QVERIFY(pickle.WriteBytes("12345", 5));
        pickle.WriteBytes(QByteArray(100, 'x').constData(), 100);
        QCOMPARE(pickle.capacity(), std::size_t(192));
        const QByteArray whole(pickle.payload() - Pickle::headerBytes, 48);
        QCOMPARE(whole.toHex(),
                 QByteArray("9000000010000000303132333435363738396162636465668877665544"
                            "33221101000000000000003132333435000000"));
    }

    void readsBackAndStopsAtTheEnd()
    {
        Pickle pickle;
        pickle.WriteInt(-7);
        pickle.WriteData("abcde", 5);
        pickle.WriteUInt64(0xFFFFFFFFFFFFFFFF);
        pickle.WriteBool(true);
        PickleIterator it(pickle);
        int number = 0, length = 0;
        const char *data = nullptr;
        quint64 big = 0;
        bool flag = false;
        QVERIFY(it.ReadInt(&number) && it.ReadData(&data, &length) && it.ReadUInt64(&big) &&
                it.ReadBool(&flag) && !it.ReadBool(&flag));
        QVERIFY(number == -7 && QByteArray(data, length) == "abcde" && ~big == 0 && flag);

        const Pickle movedTo = std::move(pickle);
        PickleIterator ofNothing(pickle); // NOLINT(bugprone-use-after-move): it has no buffer
        QVERIFY(!ofNothing.ReadInt(&number));
    }

    void refusesALengthThatIsNotThere()
    {
        for (const char *hex : {"0500000061626364", "ffffffff61626364", "ffffff7f61626364", ""}) {
            const QByteArray payload = QByteArray::fromHex(hex);
            Pickle pickle;
            pickle.WriteBytes(payload.constData(), payload.size());
            PickleIterator it(pickle);
            const char *data = nullptr;
            int length = 0;
            bool flag = false;
            QVERIFY2(!it.ReadData(&data, &length) && !it.ReadBool(&flag), hex);
        }
    }
};

QTEST_GUILESS_MAIN(tst_Pickle)
#include "tst_Pickle.moc"
