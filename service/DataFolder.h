#pragma once

#include <mutex>

#include <QHash>
#include <QJsonArray>
#include <QJsonObject>
#include <QList>
#include <QString>

/// One object of a data file, read strictly: each reader throws Exception, whose cause names the
/// file, the place in it and what is wrong.
class Entry
{
public:
    Entry(QString where, QJsonObject object);

    QString text(const QString &key) const;
    QString text(const QString &key, const QString &defaultValue) const;
    /// A whole number, or a text that holds one.
    qint64 number(const QString &key) const;
    qint64 number(const QString &key, qint64 defaultValue) const;
    /// The same as decimal text, which is how many answers carry a number.
    QString numberText(const QString &key) const;
    double fraction(const QString &key, double defaultValue) const;
    bool flag(const QString &key, bool defaultValue) const;
    Entry entry(const QString &key) const;
    /// An array of objects; empty if the key is missing.
    QList<Entry> entries(const QString &key) const;

    bool has(const QString &key) const { return m_object.contains(key); }
    const QJsonObject &object() const { return m_object; }

private:
    QString place(const QString &key) const;

    QString m_where;
    QJsonObject m_object;
};

/// The folder of plain files that a host developer edits. A file is read whenever it is asked for,
/// so a change counts at once. Any thread.
class DataFolder
{
public:
    explicit DataFolder(QString path);

    /// From now on the text "{name}" in a file stands for @p value.
    void setPlaceholder(const QByteArray &name, const QByteArray &value);

    /// The object in the file @p name; empty if the file is not there. Throws Exception if it can
    /// not be read or holds no object.
    Entry read(const QString &name);

    QString filePath(const QString &name) const;

private:
    const QString m_path;
    std::mutex m_mutex;
    QHash<QByteArray, QByteArray> m_placeholders;
};
