#pragma once

#include <QStringList>

/// How two lists of lines differ; empty if they do not.
[[nodiscard]] inline QString difference(const QStringList& actual, QStringList expected)
{
    if (actual == expected) {
        return {};
    }
    QStringList surplus;
    for (const QString& line : actual) {
        if (!expected.removeOne(line)) {
            surplus << line;
        }
    }
    if (surplus.isEmpty() && expected.isEmpty()) {
        return "in another order: " + actual.join("; ");
    }
    return "missing: " + expected.join("; ") + " / not expected: " + surplus.join("; ");
}
