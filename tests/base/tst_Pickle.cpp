#include <QtTest>

#include "base/Pickle.h"
#include "base/PickleIterator.h"

namespace {

QByteArray payloadOf(const Pickle &pickle)
{
    return QByteArray(pickle.payload(), static_cast<int>(pickle.payloadSize()));
}

Pickle withPayload(const QByteArray &bytes)
{
    Pickle pickle;
    pickle.WriteBytes(bytes.constData(), bytes.size());
    return pickle;
}

} // namespace

class tst_Pickle : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void writesTheLayout()
    {
        Pickle pickle;
        QCOMPARE(pickle.payloadSize(), std::size_t(0));
        QVERIFY(pickle.WriteData("0123456789abcdef", 16));
        QVERIFY(pickle.WriteUInt64(Q_UINT64_C(0x1122334455667788)));
        QVERIFY(pickle.WriteBool(true));
        QVERIFY(pickle.WriteBool(false));
        QCOMPARE(payloadOf(pickle).toHex(), QByteArray("10000000"
                                                       "30313233343536373839616263646566"
                                                       "8877665544332211"
                                                       "01000000"
                                                       "00000000"));
        QCOMPARE(QByteArray(pickle.payload() - Pickle::headerBytes, 4).toHex(),
                 QByteArray("24000000"));

        QVERIFY(!pickle.WriteData("x", -1));
        QCOMPARE(pickle.payloadSize(), std::size_t(36));
        QCOMPARE(payloadOf(withPayload("12345")).toHex(), QByteArray("3132333435000000"));
    }

    void growsInUnitsOf64()
    {
        Pickle pickle;
        QCOMPARE(pickle.capacity(), std::size_t(64));
        pickle.WriteBytes(QByteArray(60, 'x').constData(), 60);
        QCOMPARE(pickle.capacity(), std::size_t(64));
        pickle.WriteInt(1);
        QCOMPARE(pickle.capacity(), std::size_t(128));
        pickle.WriteBytes(QByteArray(1000, 'x').constData(), 1000);
        QCOMPARE(pickle.capacity(), std::size_t(1088));
    }

    void readsBackAndStopsAtTheEnd()
    {
        Pickle pickle;
        pickle.WriteInt(-7);
        pickle.WriteData("abcde", 5);
        pickle.WriteUInt64(Q_UINT64_C(0xFFFFFFFFFFFFFFFF));
        pickle.WriteBool(true);

        PickleIterator it(pickle);
        int number = 0, length = 0;
        const char *data = nullptr;
        quint64 big = 0;
        bool flag = false;
        QVERIFY(it.ReadInt(&number) && it.ReadData(&data, &length) && it.ReadUInt64(&big) &&
                it.ReadBool(&flag));
        QCOMPARE(number, -7);
        QCOMPARE(QByteArray(data, length), QByteArray("abcde"));
        QCOMPARE(big, Q_UINT64_C(0xFFFFFFFFFFFFFFFF));
        QVERIFY(flag);
        QVERIFY(!it.ReadBool(&flag));

        Pickle movedTo = std::move(pickle);
        PickleIterator ofNothing(
            pickle); // NOLINT(bugprone-use-after-move): a Pickle without buffer
        QVERIFY(!ofNothing.ReadInt(&number));
    }

    void refusesALengthThatIsNotThere_data()
    {
        QTest::addColumn<QByteArray>("payload");
        QTest::newRow("longer than the rest") << QByteArray::fromHex("0500000061626364");
        QTest::newRow("negative") << QByteArray::fromHex("ffffffff61626364");
        QTest::newRow("the greatest") << QByteArray::fromHex("ffffff7f61626364");
        QTest::newRow("no length") << QByteArray();
    }
    void refusesALengthThatIsNotThere()
    {
        QFETCH(QByteArray, payload);
        const Pickle pickle = withPayload(payload);
        PickleIterator it(pickle);
        const char *data = nullptr;
        int length = -1;
        bool flag = false;
        QVERIFY(!it.ReadData(&data, &length));
        QCOMPARE(length, -1);
        QVERIFY2(!it.ReadBool(&flag), "the iterator stands at the end");
    }
};

QTEST_GUILESS_MAIN(tst_Pickle)
#include "tst_Pickle.moc"
