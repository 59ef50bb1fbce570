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

/// The result of reading a preset file.
enum class ReadCode : qint32 {
    Failed = -1,
    LaterVersion = 0, ///< written by a later version of the program; never returned by XMLFile, which reads
                      ///< such files
    Success = 1,
};

/// The base of objects that are stored as a list in one of the program's XML files. It reads and writes the
/// envelope: an XML header, and a root element with the program's name and the file's version. A subclass
/// replaces the first four functions; its initWithXMLData() returns null for an invalid element.
class XMLFile
{
public:
    virtual ~XMLFile() = default;

    /// Appends the object's element, which begins with a line end.
    virtual void appendObjectToXML(QString &xml) const;

    /// These log the call and fail.
    static std::shared_ptr<XMLFile> initWithXMLData(const XMLParser::Element &element, double fileVersion);
    static std::optional<std::vector<std::shared_ptr<XMLFile>>>
    readObjectsFromFile(const QString &path, const QString &appID, ReadCode &returnCode);
    static Result<void> writeObjects(const std::vector<std::shared_ptr<XMLFile>> &objects,
                                     const QString &path, const QString &appID);

    /// Reads all objects of a file. Of a later version the known part is read.
    /// @param appID    the program that the file must name, or its name in the first major version
    /// @param errors   receives the error lines, those of this function included
    /// @param isLater  if given, is set to whether a later version of the program wrote the file
    /// @return none, with ReadCode::Failed, for an invalid file
    template<class T>
    static std::optional<std::vector<std::shared_ptr<T>>>
    readObjectsFromFile(const QString &path, const QString &appID, const QString &rootXMLElement,
                        double supportedVersion, ReadCode &returnCode,
                        const XMLParser::ErrorSink &errors = XMLParser::writeErrorLine,
                        bool *isLater = nullptr);

    /// Writes a whole file or none.
    /// @param supportedVersion  the file's version, as text
    [[nodiscard]] static Result<void> writeObjects(std::span<const XMLFile *const> objects,
                                                   const QString &path, const QString &appID,
                                                   const QString &rootXMLElement,
                                                   const QString &supportedVersion);

    /// The bytes of the file that writeObjects() writes.
    static QByteArray xmlOf(std::span<const XMLFile *const> objects, const QString &appID,
                            const QString &rootXMLElement, const QString &supportedVersion);

    /// The text as an element's text: "&", "<" and ">" become references. Not for attributes: quotes stay.
    static QString replaceXmlSpecialChars(const QString &text);

    /// The text of an element without lone surrogates. Its first character becomes a numeric reference if the
    /// reader would treat it as markup or skip it.
    static QString withReadableStart(const QString &text);

    /// The text with lone surrogates, which no file can hold, as U+FFFD.
    static QString withoutLoneSurrogates(const QString &text);

    /// The decimal number at the start of a text, with a point in every locale; 0 if there is none or it is
    /// not finite.
    static double leadingDecimal(const QByteArray &text);

protected:
    XMLFile() = default;
    XMLFile(const XMLFile &) = default;
    XMLFile &operator=(const XMLFile &) = default;

private:
    /// Creates an object from an element and keeps it; false for an invalid element.
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
