// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "metadata/imagemetadata.h"

#include <QString>

#include <vector>

namespace plexa
{

enum class MetadataControl {
    Readout,
    Line,
    Text, ///< several lines
    Date,
    PopUp,
    Keywords,
};

/// One row of a page: a property of the table of metadata properties, or a text that is made from several.
struct MetadataPageRow {
    using Reader = QVariant (*)(const ImageMetadata &);

    MetadataControl control;
    MetadataProperty property; ///< its label and, unless `reader` is set, its value
    Reader reader = nullptr;   ///< the value that is shown
    const char *label =
        nullptr; ///< in place of the property's, to be translated in the context "MetadataPages"
    const char *ownName = nullptr; ///< in place of the property's, where that has another row on the page

    QString name() const;
    QString shownLabel() const;
    QVariant value(const ImageMetadata &metadata) const;
    /// The text of a value; empty for an absent one.
    QString text(const QVariant &value) const;
};

struct MetadataPage {
    const char *id;    ///< as it is stored in the settings
    const char *title; ///< to be translated in the context "MetadataPages"
    std::vector<MetadataPageRow> rows;
};

/// The tabs of the metadata window in their order.
const std::vector<MetadataPage> &metadataPages();

/// A value of a pop-up with its text, translated.
struct MetadataChoice {
    int value;
    QString text;
};
std::vector<MetadataChoice> metadataChoices(MetadataProperty property);

} // namespace plexa
