// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QTest>

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

/// Replaces QTest::addColumn() and QFETCH(). The columns are the members of a struct; the first one, `name`,
/// names the row:
///
///     struct Taken { Text name; QStringList files; Text expected; };
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
template<class Row>
void addRow(const Row &row)
{
    static QByteArray function; // the test function that has its column already
    if (function != QTest::currentTestFunction()) {
        function = QTest::currentTestFunction();
        QTest::addColumn<Row>("row");
    }
    QTest::newRow(row.name.toUtf8().constData()) << row;
}

template<class Row>
void addRows(std::initializer_list<Row> rows)
{
    for (const Row &row : rows)
        addRow(row);
}

/// The row of this call of the test function.
template<class Row>
Row currentRow()
{
    QFETCH(Row, row);
    return row;
}

} // namespace plexa::test
