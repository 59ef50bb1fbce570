// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "presets/savingpresetfields.h"
#include "watermark/fieldlimits.h"

#include <QJsonValue>

namespace plexa
{

class FontCatalog;

/// One field of either kind of preset, or of the metadata.
struct FieldRow {
    enum class Owner { Watermark, SavingPreset, Metadata };

    QString name;
    Owner owner = Owner::Watermark;
    FieldKind kind = FieldKind::String;
    FieldLimits limits;
    QJsonValue initial;
    bool isOfMachine = false; ///< the default, and the names of fonts, are those of the machine
};

/// The fields that --set, --save-set and --meta can set, in this order.
std::vector<FieldRow> allFields(const FontCatalog &fonts);

QString nameOf(FieldKind kind);

/// Where a field is described: in the list of all, by itself with the names of the fonts, or in the manual
/// page, without what differs from machine to machine.
enum class FieldText { InList, Alone, Manual };

/// Kind, allowed values, unit and default in words.
QString descriptionOf(const FieldRow &field, FieldText place);

} // namespace plexa
