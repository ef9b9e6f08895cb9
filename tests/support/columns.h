#pragma once

#include <QTest>

/// Adds the columns of a test's table, with a name for each type, and gives what adds a row:
///     const auto row = addColumns<QString, bool>("text", "isValid");
///     row("half an address", "192.168.", false);
template <typename... Types, typename... Names>
[[nodiscard]] auto addColumns(Names... names)
{
    static_assert(sizeof...(Types) == sizeof...(Names));
    (QTest::addColumn<Types>(names), ...);
    return [](const char* rowName, const Types&... values) { (QTest::newRow(rowName) << ... << values); };
}
