#pragma once

#include <QCoreApplication>

/// The host's own texts for the user: Text::tr("...") gives one in his language.
class Text
{
    Q_DECLARE_TR_FUNCTIONS(host)
public:
    static QString yesOrNo(bool is) { return is ? tr("yes") : tr("no"); }
};
