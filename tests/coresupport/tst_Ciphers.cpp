#include <QtTest>

#include "support/coresupport/Cipher.h"
#include "support/coresupport/QTAes.h"
#include "support/coresupport/QTDes.h"
#include "tests/support/FakeMachine.h"

namespace {

QByteArray hex(const char *digits)
{
    return QByteArray::fromHex(digits);
}

} // namespace

class tst_Ciphers : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void knownAnswers()
    {
        // The GCM test vectors of McGrew and Viega, cases 14 and 13.
        const QByteArray zeroKey(32, '\0'), zeroNonce(12, '\0');
        QCOMPARE(Cipher::sealAes256Gcm(zeroKey, zeroNonce, QByteArray(16, '\0')).value(),
                 hex("cea7403d4d606b6e074ec5d3baf39d18d0d1c8a799996bf0265b98b5d48ab919"));
        QVERIFY(!Cipher::sealAes256Gcm(zeroKey.left(16), zeroNonce, "x"));
        QCOMPARE(Cipher::sealAes256Gcm(zeroKey, zeroNonce, {}).value(),
                 hex("530f8afbc74536b9a963b4f1c4cb738b"));
        // The text of NIST SP 800-67, appendix B, chained; the answer is OpenSSL's.
        const QByteArray key = hex("0123456789abcdef23456789abcdef01456789abcdef0123");
        const QByteArray vector = hex("f69f2445df4f9b17");
        const QByteArray plain("The qufck brown fox jump");
        const QByteArray data =
            hex("a5c282bad0de3774becd2e04386b589fb5057d8552fc4336af45148b1b044b00");
        QCOMPARE(Cipher::encryptTripleDesCbc(key, vector, plain).value(), data);
        QCOMPARE(Cipher::decryptTripleDesCbc(key, vector, data).value(), plain);
    }

    void recordsOpenOnTheirOwnMachineOnly()
    {
        const QByteArray plain = "sixteen bytes ok and some more";
        QByteArray record, again, opened;
        QVERIFY(QTAes::EncryptByteArrayByCpuid(plain, record));
        QVERIFY(QTAes::EncryptByteArrayByCpuid(plain, again));
        QVERIFY2(record != again, "the nonce is fresh each time");
        QVERIFY(QTAes::DecryptByteArrayByCpuid(record, opened));
        QCOMPARE(opened, plain);

        const FakeMachine other;
        QVERIFY(!QTAes::DecryptByteArrayByCpuid(record, opened) && opened.isEmpty());
        // Records of an earlier version open for ever.
        QVERIFY(QTAes::DecryptByteArrayByCpuid(
            hex("5fb9cebb54bc79c7f92a02405debb1f200e5bf25996375aeda92e259a01c46ef"), opened));
        QCOMPARE(opened, "kept");
    }

    void changedRecordsGiveNothing()
    {
        QByteArray record, opened;
        QVERIFY(QTAes::EncryptByteArrayByCpuid(QByteArray(36, 'p'), record));
        for (int bit = 0; bit < record.size() * 8; ++bit) {
            QByteArray changed = record;
            changed[bit / 8] = static_cast<char>(changed.at(bit / 8) ^ (1 << bit % 8));
            for (const QByteArray &bad : {changed, record.left(bit / 8)}) {
                opened = "garbage";
                QVERIFY(!QTAes::DecryptByteArrayByCpuid(bad, opened) && opened.isEmpty());
            }
        }
    }

    void wordFilesComeBack()
    {
        for (int length = 0; length < 20; ++length) {
            QByteArray file, opened;
            QVERIFY(QTDes::EncryptByteArray(QByteArray(length, 'w'), file));
            QVERIFY(QTDes::DecryptByteArray(file, opened));
            QCOMPARE(opened, QByteArray(length, 'w'));
            QVERIFY(!QTDes::DecryptByteArray(file.chopped(1), opened) && opened.isEmpty());
        }
    }
};

QTEST_GUILESS_MAIN(tst_Ciphers)
#include "tst_Ciphers.moc"
