// SPDX-License-Identifier: GPL-3.0-or-later

#include "metadata/imagemetadataproperties.h"

namespace plexa
{

namespace
{

constexpr MetadataPropertyRow kRows[] = {
#define PLEXA_ROW(getter, setter, form, kind, group, key, label, isEditable)                                 \
    {#getter, label, MetadataForm::form, MetadataKind::kind, MetadataGroup::group, key, isEditable},
    PLEXA_METADATA_PROPERTIES(PLEXA_ROW)
#undef PLEXA_ROW
};

using enum MetadataProperty;

constexpr MetadataProperty kTwins[][2] = {
    {orientation, tiffOrientation}, {dpiWidth, tiffXResolution}, {dpiHeight, tiffYResolution},
    {iptcCopyright, tiffCopyright}, {iptcCreator, tiffArtist},   {iptcDescription, tiffDescription},
};

} // namespace

std::span<const MetadataPropertyRow> metadataProperties()
{
    return kRows;
}

const MetadataPropertyRow &metadataProperty(MetadataProperty property)
{
    return kRows[static_cast<size_t>(property)];
}

std::optional<MetadataProperty> twinOf(MetadataProperty property)
{
    for (const auto &[top, nested] : kTwins) {
        if (top == property || nested == property)
            return top == property ? nested : top;
    }
    return {};
}

} // namespace plexa
