// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/metadataediting.h"
#include "ui/metadata/metadatapages.h"

#include <QObject>
#include <QPointer>
#include <QWidget>

#include <memory>

namespace plexa
{

/// One row of the metadata window: the control that shows and edits a fact of the photos. Main thread.
class MetadataFieldRow : public QObject
{
    Q_OBJECT

public:
    /// @param editing  outlives the row
    static std::unique_ptr<MetadataFieldRow> make(const MetadataPageRow &row, MetadataEditing &editing);

    /// The control; its name is that of the property with the kind behind it: "iptcCityTextField". Belongs to
    /// the form that it is put into.
    QWidget *widget() const { return m_widget; }
    const MetadataPageRow &row() const { return m_row; }

    /// Shows what the photos have. A text that the user is typing stays while its own fact does.
    virtual void refresh() = 0;
    /// Edits the photos if the user has changed the control.
    virtual void commit() {}
    /// A control that cannot be edited looks like a label.
    virtual void setEditable(bool isEditable) { m_widget->setEnabled(isEditable); }

Q_SIGNALS:
    /// The user has entered what the field cannot hold; a sentence.
    void refused(const QString &reason);

protected:
    MetadataFieldRow(const MetadataPageRow &row, MetadataEditing &editing, QWidget *widget,
                     const char *kindOfControl);

    MetadataEditing &editing() const { return m_editing; }
    MetadataEditing::Common common() const;
    /// Sets the value that the text means, and shows what the photos have then.
    void apply(const QString &text);
    static QString multipleValues();

private:
    const MetadataPageRow &m_row;
    MetadataEditing &m_editing;
    const QPointer<QWidget> m_widget;
};

} // namespace plexa
