#pragma once

#include <QJsonObject>
#include <QString>
#include <QStringList>

/// What the command says: plain lines, one JSON object a line, or, on a terminal, a line that is
/// redrawn in place. Main thread.
class Output
{
public:
    enum class Form { Text, Json };

    explicit Output(Form form);

    /// A result: @p text for people, @p object for programs.
    void line(const QString &text, const QJsonObject &object) const;
    /// A table with a head; as JSON one object for each row, with the head's words as keys.
    void table(const QStringList &head, const QList<QStringList> &rows) const;
    /// Why the command fails; to the standard error output.
    void error(const QString &text) const;

    /// @name The course of a launch
    /// @{
    struct Transfer
    {
        quint64 bytesPerSecond = 0;
        quint64 doneBytes = 0;
        quint64 totalBytes = 0;
    };
    void stage(const QString &name);
    /// What a stage does just now; not on a terminal, where the bar tells it.
    void status(const QString &text);
    /// What the user has to know, and stays to be read.
    void notice(const QString &text);
    void progress(int percent, const Transfer &transfer);
    /// Ends the line that is redrawn.
    void endProgress();
    /// @}

private:
    void redraw();
    static QString transferText(const Transfer &transfer);

    const Form m_form;
    const bool m_isTerminal;
    QString m_stage;
    QString m_lastStatus;
    int m_percent = -1;
    Transfer m_transfer;
    bool m_isLineOpen = false;
};
