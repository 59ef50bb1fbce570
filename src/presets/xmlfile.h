// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/result.h"
#include "presets/xmlparser.h"

#include <QString>

#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace plexa
{

/// What became of the reading of a preset file.
enum class ReadCode : qint32 {
    Failed = -1,
    LaterVersion = 0, ///< the file belongs to a later version of the program; never given by XMLFile, which
                      ///< reads such files
    Success = 1,
};

/// The base of objects that are stored as a list in one of the program's XML files. It has the file's
/// envelope: an XML header, and a root element that names the program and the file's version. A subclass
/// writes itself with appendObjectToXML() and is made from an element by a static function of its own,
///
///     static std::shared_ptr<T> initWithXMLData(const XMLParser::Element &element, double fileVersion);
///
/// which returns null when the element is not what it must be. It offers readObjectsFromFile() and
/// writeObjects() without root element and version, made of the ones here.
class XMLFile
{
public:
    virtual ~XMLFile() = default;

    /// Appends the object's element, which begins with a line end.
    virtual void appendObjectToXML(QString &xml) const;

    /// What every subclass has to have a version of. These log that they were called, and fail.
    static std::shared_ptr<XMLFile> initWithXMLData(const XMLParser::Element &element, double fileVersion);
    static std::optional<std::vector<std::shared_ptr<XMLFile>>>
    readObjectsFromFile(const QString &path, const QString &appID, ReadCode &returnCode);
    static Result<void> writeObjects(const std::vector<std::shared_ptr<XMLFile>> &objects,
                                     const QString &path, const QString &appID);

    /// Reads a file whole: all of its objects, or none of them.
    /// @param appID             the program that the file must belong to; the files of the first major
    /// version,
    ///                          which named themselves otherwise, are read as well
    /// @param rootXMLElement    the name that the root element must have
    /// @param supportedVersion  today's version of the file; later ones are read as far as they are
    /// understood
    /// @param errors            takes the error lines, also those on what this function finds
    /// @param isLater           is set, where given, to whether a later version of the program wrote the file
    /// @return none, with ReadCode::Failed, when anything is wrong with the file
    template<class T>
    static std::optional<std::vector<std::shared_ptr<T>>>
    readObjectsFromFile(const QString &path, const QString &appID, const QString &rootXMLElement,
                        double supportedVersion, ReadCode &returnCode,
                        const XMLParser::ErrorSink &errors = XMLParser::writeErrorLine,
                        bool *isLater = nullptr);

    /// Writes a file whole or not at all.
    /// @param supportedVersion  the file's version, as it is written
    [[nodiscard]] static Result<void> writeObjects(std::span<const XMLFile *const> objects,
                                                   const QString &path, const QString &appID,
                                                   const QString &rootXMLElement,
                                                   const QString &supportedVersion);

    /// The same in two steps: the bytes of the file, and their writing.
    static QByteArray xmlOf(std::span<const XMLFile *const> objects, const QString &appID,
                            const QString &rootXMLElement, const QString &supportedVersion);
    [[nodiscard]] static Result<void> writeXML(const QByteArray &xml, const QString &path);

    /// The text as an element's text: "&", "<" and ">" become references. Quotes stay, so it is no attribute.
    static QString replaceXmlSpecialChars(const QString &text);

    /// The text of an element with its first character as a numeric reference, where the reader would take it
    /// for markup or skip it; and withoutLoneSurrogates(). The rest stays.
    static QString withReadableStart(const QString &text);

    /// The text with lone surrogates, which no file can hold, as U+FFFD.
    static QString withoutLoneSurrogates(const QString &text);

protected:
    XMLFile() = default;
    XMLFile(const XMLFile &) = default;
    XMLFile &operator=(const XMLFile &) = default;

private:
    /// Makes an object of an element and keeps it; false when the element is not right.
    using KeepObject = std::function<bool(const XMLParser::Element &element, double fileVersion)>;

    static bool readFile(const QString &path, const QString &appID, const QString &rootXMLElement,
                         const KeepObject &keepObject, const XMLParser::ErrorSink &errors,
                         double &fileVersion);
};

template<class T>
std::optional<std::vector<std::shared_ptr<T>>>
XMLFile::readObjectsFromFile(const QString &path, const QString &appID, const QString &rootXMLElement,
                             double supportedVersion, ReadCode &returnCode,
                             const XMLParser::ErrorSink &errors, bool *isLater)
{
    std::vector<std::shared_ptr<T>> objects;
    const auto keep = [&objects](const XMLParser::Element &element, double fileVersion) {
        std::shared_ptr<T> object = T::initWithXMLData(element, fileVersion);
        if (!object)
            return false;
        objects.push_back(std::move(object));
        return true;
    };
    double fileVersion = 0;
    const bool isRead = readFile(path, appID, rootXMLElement, keep, errors, fileVersion);
    if (isLater)
        *isLater = fileVersion > supportedVersion;
    returnCode = isRead ? ReadCode::Success : ReadCode::Failed;
    if (!isRead)
        return std::nullopt;
    return objects;
}

} // namespace plexa
