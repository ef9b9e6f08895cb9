#pragma once

#include <QTest>

/// The columns of a test's table, with a name for each type: addColumns<QString, bool>("text", "isValid").
template <typename... Types, typename... Names>
void addColumns(Names... names)
{
    static_assert(sizeof...(Types) == sizeof...(Names));
    (QTest::addColumn<Types>(names), ...);
}
