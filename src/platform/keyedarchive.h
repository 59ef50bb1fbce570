// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/result.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QColor>
#include <QLatin1StringView>
#include <QList>
#include <QSizeF>
#include <QString>

#include <memory>
#include <optional>
#include <vector>

namespace plexa
{

// Keyed archives: an object graph as a binary property list, in the form of the desktop that preset files
// come from. The list has the entries "$version" (100000), "$archiver" ("NSKeyedArchiver"), "$objects" and
// "$top". "$objects" begins with "$null", the absent object; it contains texts, numbers and data directly,
// every other object as a dictionary whose "$class" refers to a dictionary with "$classname" and "$classes".
// Objects refer to each other by UIDs, the indexes in "$objects". "$top" holds the archive's own keys.

/// A picture as it is archived.
struct ArchivedImage {
    QSizeF size;     ///< in points
    QByteArray tiff; ///< a TIFF file
    QByteArray svg;  ///< the drawing that the TIFF file was made from, if any; only this program reads it
};

/// The parts of an archived picture. The views are valid as long as any value or kept object of the archive.
struct ImageRepresentations {
    QList<QByteArrayView> bitmaps; ///< files, most often TIFF, in their order
    QByteArrayView svg;            ///< as in ArchivedImage; empty where there is none
};

/// An object of an archive that was read, with all that it refers to, to be written unchanged into another
/// one. Keeps the archive. Immutable; any thread.
class KeptObject final
{
public:
    /// None.
    KeptObject() = default;

    bool isNone() const { return !m_node; }

private:
    friend class ArchivedValue;
    friend class KeyedArchiver;
    std::shared_ptr<const std::vector<void *>> m_objects; // of the archive
    void *m_node = nullptr;
};

/// Writes a keyed archive. Objects are added from the leaves up; equal texts, numbers and colors become one
/// object. One thread at a time.
class KeyedArchiver final
{
public:
    /// An object of this archive; 0 is none.
    enum class Reference : quint32 { None = 0 };

    enum class Mutability { Immutable, Mutable };

    /// Keys with their values, in the order in which they are set. A key that is set again has the new value.
    class Object final
    {
    public:
        Object();
        ~Object();
        Object(Object &&) noexcept;
        Object &operator=(Object &&) noexcept;

        void setObject(QLatin1StringView key, Reference object);
        void setBool(QLatin1StringView key, bool value);
        void setFloat(QLatin1StringView key, float value);
        void setInteger(QLatin1StringView key, qint64 value);
        void setBytes(QLatin1StringView key, const QByteArray &bytes);

    private:
        friend class KeyedArchiver;
        void *m_dictionary; // owned, until it becomes part of an archive
    };

    KeyedArchiver();
    ~KeyedArchiver();
    KeyedArchiver(const KeyedArchiver &) = delete;
    KeyedArchiver &operator=(const KeyedArchiver &) = delete;

    /// The archive's own keys.
    Object &top() { return m_top; }

    /// A null text is none. Null characters are left out, which the form cannot hold.
    Reference addString(const QString &text);
    Reference addInteger(qint64 number);
    Reference addFloat(float number);
    Reference addArray(const std::vector<Reference> &objects, Mutability mutability);
    /// As calibrated RGB with the numbers of sRGB. An invalid color is left out.
    Reference addColor(const QColor &color);
    Reference addImage(const ArchivedImage &image);
    /// An object of another archive, with all that it refers to. Shared objects stay shared; invalid
    /// references become none.
    Reference addCopy(const KeptObject &object);
    /// An object of a class of our own.
    Reference addObject(Object object, QLatin1StringView className);

    /// The archive. Once.
    /// @return a failure when it exceeds the limits for reading
    [[nodiscard]] Result<QByteArray> finish();

private:
    struct State;

    Reference append(void *node);
    Reference addClass(const std::vector<QLatin1StringView> &lineage);
    Reference addInstance(Object object, const std::vector<QLatin1StringView> &lineage);
    Reference addMutableData(const QByteArray &bytes);

    Object m_top;
    std::unique_ptr<State> m_state;
};

/// A value in a keyed archive that was read, or none. Each reader returns none for a value of another kind,
/// an invalid reference and an object of another class. Copies share the archive; one thread at a time.
class ArchivedValue final
{
public:
    /// None.
    ArchivedValue() = default;

    /// Opens an archive, in the binary form or as XML.
    /// @return an object with the keys of the archive's top, or a failure as text that follows a file's name
    [[nodiscard]] static Result<ArchivedValue> readArchive(const QByteArray &bytes);

    bool isNone() const { return !m_node; }

    /// Is it none because its reference is invalid, so that something was lost?
    bool isMissing() const { return m_isMissing; }

    /// Of an object: its keys.
    std::vector<QByteArray> keys() const;

    /// Of an object: the value of that key. References are followed.
    ArchivedValue value(QLatin1StringView key) const;

    /// Is it an object of that class, or of one derived from it?
    bool isOfClass(QLatin1StringView className) const;

    /// Readings of one text share its memory.
    std::optional<QString> string() const;
    /// A boolean counts as 1 or 0; a number object is its number. Always finite.
    std::optional<double> number() const;
    /// Without the fraction; none for a number that does not fit.
    std::optional<qint64> integer() const;
    /// True for numbers other than 0; false for none.
    bool boolean() const;
    std::optional<QByteArray> data() const;
    /// Of arrays of both classes. Elements may be none.
    std::optional<std::vector<ArchivedValue>> array() const;

    /// Of any color space, as sRGB; invalid for none. Numbers of calibrated and device RGB count as those of
    /// sRGB, CMYK is converted without a profile.
    QColor color() const;

    /// Of a picture; empty for everything else.
    ImageRepresentations imageRepresentations() const;

    /// To write it again.
    KeptObject kept() const;

    /// The same for every reference to one object.
    const void *identity() const { return m_node; }

    /// Has more been read in total than an archive may hold? From then on data, arrays and texts that were
    /// not read before count as missing. Bounds objects that many others refer to.
    bool isExhausted() const;

private:
    struct Archive;
    ArchivedValue(std::shared_ptr<Archive> archive, void *node);

    ArchivedValue resolved(void *node) const;
    bool isNode(int type) const;
    std::optional<QByteArrayView> dataView() const;
    std::optional<QString> sharedText(QByteArrayView utf8) const;
    ArchivedValue unboxedNumber() const;
    std::optional<std::vector<double>> components(QLatin1StringView key) const;
    QColor rgbColor() const;
    QColor colorAtDepth(int depth) const;

    std::shared_ptr<Archive> m_archive;
    void *m_node = nullptr;
    bool m_isMissing = false;
};

} // namespace plexa
