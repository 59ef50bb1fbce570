// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QTest>

#include <tuple>

namespace plexa::test
{

/// A text of a data row: a string that a plain UTF-8 literal can initialize.
class Text : public QString
{
public:
    Text() = default;
    Text(const char *utf8)
        : QString(QString::fromUtf8(utf8))
    {
    }
    Text(const QString &text)
        : QString(text)
    {
    }
};

/// A row of a table: its name and its columns.
template<class... Columns>
using Row = std::tuple<Text, Columns...>;

/// Replaces QTest::addColumn() and QFETCH(). A row is a Row, or a struct whose first member is `name`:
///
///     using Taken = Row<QStringList, Text>; // files, expected
///     void uniqueName_data()
///     {
///         addRows<Taken>({
///             {"free", {}, "a.jpg"},
///             {"gap is not reused", words("a.jpg a-2.jpg"), "a-3.jpg"},
///         });
///     }
///     void uniqueName()
///     {
///         const auto [name, files, expected] = currentRow<Taken>();
///         ...
///
/// May be called again to add more rows of the same kind. Each row needs a name of its own.
template<class RowType>
void addRow(const RowType &row)
{
    static QByteArray function; // the test function that has its column already
    if (function != QTest::currentTestFunction()) {
        function = QTest::currentTestFunction();
        QTest::addColumn<RowType>("row");
    }
    if constexpr (requires { row.name; })
        QTest::newRow(row.name.toUtf8().constData()) << row;
    else
        QTest::newRow(std::get<0>(row).toUtf8().constData()) << row;
}

template<class RowType>
void addRows(std::initializer_list<RowType> rows)
{
    for (const RowType &row : rows)
        addRow(row);
}

/// The row of this call of the test function.
template<class RowType>
RowType currentRow()
{
    QFETCH(RowType, row);
    return row;
}

} // namespace plexa::test
