#pragma once

#include <cstdio>

#include <QString>

/// What a figure is compared with: a bare cost, in the same unit.
struct Rival
{
    const char *name = "";
    double figure = 0;
};

/// Prints a figure in the form that bench/common.sh collects; its comment says how an aim reads.
inline void printResult(const QString &what, double figure, const char *unit, const char *aim = "",
                        const Rival &rival = {})
{
    std::printf("result\t%s\t%s\t%.6f\t%s\t%s\t%.6f\n", qUtf8Printable(what), unit, figure, aim,
                rival.name, rival.figure);
}
