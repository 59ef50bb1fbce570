// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/exif/pictureregions.h"

#include "imageio/embedded/metadataclearing.h"

#include <QPointF>
#include <QRectF>
#include <QStringList>

#include <algorithm>
#include <cmath>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace plexa
{

namespace
{

/// In normalised coordinates, origin at the top left.
QPointF turned(QPointF point, int orientation)
{
    const double x = point.x();
    const double y = point.y();
    switch (orientation) {
    case 2:
        return {1 - x, y};
    case 3:
        return {1 - x, 1 - y};
    case 4:
        return {x, 1 - y};
    case 5:
        return {y, x};
    case 6:
        return {1 - y, x};
    case 7:
        return {1 - y, 1 - x};
    case 8:
        return {y, 1 - x};
    default:
        return point;
    }
}

template<class Size>
Size turnedSize(Size size, int orientation)
{
    return orientation >= 5 ? size.transposed() : size;
}

/// Pixels of the copy for numbers of an area in pixels of the source; none for what is no area.
std::optional<std::vector<long>> turnedArea(const std::vector<long> &area, const PictureTurn &turn)
{
    if (area.size() < 2 || area.size() > 4)
        return {};
    const QSizeF stored = turn.stored;
    const QSizeF upright =
        turnedSize(QSizeF(stored.width() * turn.scaleX, stored.height() * turn.scaleY), turn.orientation);
    // The middle of the pixel, which stays in its place.
    const QPointF point = turned({(static_cast<double>(area[0]) + 0.5) / stored.width(),
                                  (static_cast<double>(area[1]) + 0.5) / stored.height()},
                                 turn.orientation);
    std::vector<double> numbers{std::floor(point.x() * upright.width()),
                                std::floor(point.y() * upright.height())};
    if (area.size() == 3) {
        numbers.push_back(static_cast<double>(area[2]) * std::max(turn.scaleX, turn.scaleY));
    } else if (area.size() == 4) {
        const QSizeF size = turnedSize(
            QSizeF(static_cast<double>(area[2]) * turn.scaleX, static_cast<double>(area[3]) * turn.scaleY),
            turn.orientation);
        numbers.insert(numbers.end(), {size.width(), size.height()});
    }
    std::vector<long> result;
    for (const double number : numbers)
        result.push_back(std::lround(std::clamp(number, 0.0, 65'535.0)));
    return result;
}

std::vector<long> numbersOf(const Exiv2::Metadatum &datum)
{
    std::vector<long> numbers;
    for (long i = 0; i < std::min(5L, datum.count()); ++i)
        numbers.push_back(datum.toLong(i));
    return numbers;
}

using XmpByName = std::map<std::string, Exiv2::Xmpdatum *>;

std::optional<double> numberOf(const XmpByName &parts, const char *name)
{
    const auto part = parts.find(name);
    bool isNumber = false;
    const double number =
        part == parts.end() ? 0 : QString::fromStdString(part->second->toString()).toDouble(&isNumber);
    return isNumber && std::isfinite(number) ? std::optional(number) : std::nullopt;
}

void setText(Exiv2::Xmpdatum &datum, const QString &text)
{
    Exiv2::XmpTextValue value;
    value.value_ = text.toStdString();
    datum.setValue(&value);
}

void setNumber(const XmpByName &parts, const char *name, double number)
{
    if (const auto part = parts.find(name); part != parts.end())
        setText(*part->second, QString::number(number, 'g', 8));
}

/// Centre and, but for points and circles, width and height. @return false when it is no such area
bool turnArea(const XmpByName &parts, const PictureTurn &turn)
{
    const auto unit = parts.find("unit");
    const auto x = numberOf(parts, "x");
    const auto y = numberOf(parts, "y");
    if ((unit != parts.end() && unit->second->toString() != "normalized") || !x || !y)
        return false;
    const QPointF centre = turned({*x, *y}, turn.orientation);
    setNumber(parts, "x", centre.x());
    setNumber(parts, "y", centre.y());
    const auto width = numberOf(parts, "w");
    const auto height = numberOf(parts, "h");
    if (width.has_value() != height.has_value())
        return false;
    if (width) {
        const QSizeF size = turnedSize(QSizeF(*width, *height), turn.orientation);
        setNumber(parts, "w", size.width());
        setNumber(parts, "h", size.height());
    }
    return true;
}

bool turnDimensions(const XmpByName &parts, const PictureTurn &turn)
{
    const auto width = numberOf(parts, "w");
    const auto height = numberOf(parts, "h");
    if (!width || !height)
        return false;
    const QSizeF size = turnedSize(
        QSizeF(std::round(*width * turn.scaleX), std::round(*height * turn.scaleY)), turn.orientation);
    setNumber(parts, "w", size.width());
    setNumber(parts, "h", size.height());
    return true;
}

/// "x, y, width, height" of Microsoft's regions.
bool turnRectangle(Exiv2::Xmpdatum &datum, const PictureTurn &turn)
{
    std::vector<double> numbers;
    for (const QString &text : QString::fromStdString(datum.toString()).split(u',')) {
        bool isNumber = false;
        numbers.push_back(text.trimmed().toDouble(&isNumber));
        if (!isNumber || !std::isfinite(numbers.back()))
            return false;
    }
    if (numbers.size() != 4)
        return false;
    const QPointF topLeft{numbers[0], numbers[1]};
    const QRectF rect = QRectF(turned(topLeft, turn.orientation),
                               turned(topLeft + QPointF(numbers[2], numbers[3]), turn.orientation))
                            .normalized();
    QStringList texts;
    for (const double number : {rect.x(), rect.y(), rect.width(), rect.height()})
        texts += QString::number(number, 'f', 6);
    setText(datum, texts.join(QStringLiteral(", ")));
    return true;
}

/// Where a structure's field stands ("...[1]/mwg-rs:Area") and its name without prefix ("x").
struct FieldPath {
    explicit FieldPath(const std::string &key)
        : parent(key.substr(0, key.find_last_of('/')))
        , name(key.substr(key.find_last_of(':') + 1))
    {
    }

    bool isIn(const char *structure) const { return parent.ends_with(std::string(":") + structure); }

    std::string parent;
    std::string name;
};

/// @return false when something in them cannot be turned
bool turnWorkingGroupRegions(Exiv2::XmpData &xmp, const PictureTurn &turn)
{
    std::map<std::string, XmpByName> areas;
    std::map<std::string, XmpByName> dimensions;
    for (Exiv2::Xmpdatum &datum : xmp) {
        if (datum.groupName() != "mwg-rs")
            continue;
        const FieldPath path(datum.key());
        if (path.isIn("Area"))
            areas[path.parent][path.name] = &datum;
        else if (path.isIn("AppliedToDimensions"))
            dimensions[path.parent][path.name] = &datum;
    }
    return std::all_of(areas.begin(), areas.end(),
                       [&](const auto &area) { return turnArea(area.second, turn); }) &&
           std::all_of(dimensions.begin(), dimensions.end(),
                       [&](const auto &size) { return turnDimensions(size.second, turn); });
}

bool turnMicrosoftRegions(Exiv2::XmpData &xmp, const PictureTurn &turn)
{
    return std::all_of(xmp.begin(), xmp.end(), [&](Exiv2::Xmpdatum &datum) {
        return datum.groupName() != "MP" || FieldPath(datum.key()).name != "Rectangle" ||
               turnRectangle(datum, turn);
    });
}

/// Regions of vocabularies that are not turned here.
bool isOtherRegion(const Exiv2::Xmpdatum &datum)
{
    return datum.groupName() == "acdsee-rs" || datum.groupName() == "apple-fi";
}

} // namespace

void turnRegionsInExif(Exiv2::ExifData &exif, const PictureTurn &turn)
{
    if (turn.isIdentity())
        return;
    for (const char *key :
         {"Exif.Photo.SubjectArea", "Exif.Photo.SubjectLocation", "Exif.Image.SubjectLocation"}) {
        const auto datum = exif.findKey(Exiv2::ExifKey(key));
        if (datum == exif.end())
            continue;
        if (const auto area = turnedArea(numbersOf(*datum), turn)) {
            Exiv2::UShortValue value;
            for (const long number : *area)
                value.value_.push_back(static_cast<uint16_t>(number));
            datum->setValue(&value);
        } else {
            exif.erase(datum);
        }
    }
}

bool turnRegionsInXmp(Exiv2::XmpData &xmp, const PictureTurn &turn)
{
    if (turn.isIdentity())
        return false;
    for (const char *key : {"Xmp.exif.SubjectArea", "Xmp.exif.SubjectLocation"}) {
        const auto datum = xmp.findKey(Exiv2::XmpKey(key));
        if (datum == xmp.end())
            continue;
        const auto area = turnedArea(numbersOf(*datum), turn);
        eraseXmpProperty(xmp, key);
        if (!area)
            continue;
        Exiv2::XmpArrayValue value(Exiv2::xmpSeq);
        for (const long number : *area)
            value.read(std::to_string(number));
        xmp.add(Exiv2::XmpKey(key), &value);
    }
    const auto count = [&xmp] { return std::distance(xmp.begin(), xmp.end()); };
    const auto before = count();
    eraseMetadataIf(xmp, isOtherRegion);
    if (!turnWorkingGroupRegions(xmp, turn))
        eraseXmpProperty(xmp, "Xmp.mwg-rs.Regions");
    if (!turnMicrosoftRegions(xmp, turn))
        eraseXmpProperty(xmp, "Xmp.MP.RegionInfo");
    return count() != before;
}

} // namespace plexa
