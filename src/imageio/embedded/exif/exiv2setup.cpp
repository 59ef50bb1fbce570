// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/exif/exiv2setup.h"

#include <exiv2/exiv2.hpp>

namespace plexa
{

namespace
{

struct KnownNamespace {
    const char *prefix;
    const char *address;
};

// Written by phones, photo managers and lens databases, unknown to the library.
constexpr KnownNamespace kNamespaces[] = {
    {"hdrgm", "http://ns.adobe.com/hdr-gain-map/1.0/"},
    {"HDRGainMap", "http://ns.apple.com/HDRGainMap/1.0/"},
    {"apdi", "http://ns.apple.com/pixeldatainfo/1.0/"},
    {"apple-fi", "http://ns.apple.com/faceinfo/1.0/"},
    {"Container", "http://ns.google.com/photos/1.0/container/"},
    {"Item", "http://ns.google.com/photos/1.0/container/item/"},
    {"GCamera", "http://ns.google.com/photos/1.0/camera/"},
    {"GImage", "http://ns.google.com/photos/1.0/image/"},
    {"GAudio", "http://ns.google.com/photos/1.0/audio/"},
    {"GDepth", "http://ns.google.com/photos/1.0/depthmap/"},
    {"exifEX", "http://cipa.jp/exif/1.0/"},
    {"drone-dji", "http://www.dji.com/drone-dji/1.0/"},
    {"acdsee-rs", "http://ns.acdsee.com/regions/"},
    {"ics", "http://ns.idimager.com/ics/1.0/"},
    {"geo", "http://www.w3.org/2003/01/geo/wgs84_pos#"},
};

// Never destroyed: a thread that outlives main() may still hold it.
std::recursive_mutex &namespaceMutex()
{
    static auto *mutex = new std::recursive_mutex;
    return *mutex;
}

void lockOrUnlock(void *mutex, bool lock)
{
    if (lock)
        static_cast<std::recursive_mutex *>(mutex)->lock();
    else
        static_cast<std::recursive_mutex *>(mutex)->unlock();
}

/// Empty: the library does not know the prefix.
std::string addressInLibrary(const std::string &prefix)
{
    try {
        return Exiv2::XmpProperties::ns(prefix);
    } catch (const std::exception &) {
        return {};
    }
}

void bindKnownNamespaces()
{
    QByteArray declarations;
    for (auto known = knownNamespaces().begin(); known != knownNamespaces().end(); ++known) {
        const std::string prefix = known.key().toStdString();
        const std::string address = known.value().toStdString();
        if (prefix == "xml" || prefix == "x" || prefix == "rdf") // no properties
            continue;
        // The library has names of its own for some ("iptc").
        for (const std::string &name : {prefix, Exiv2::XmpProperties::prefix(address)}) {
            if (const std::string bound = addressInLibrary(name); bound != address)
                Exiv2::XmpProperties::unregisterNs(bound);
        }
        if (Exiv2::XmpProperties::prefix(address).empty())
            Exiv2::XmpProperties::registerNs(address, prefix);
        declarations += " xmlns:" + known.key().toUtf8() + "=\"" + known.value().toUtf8() + '"';
    }
    // Below that table the library has another one, which each declaration that it reads changes.
    const QByteArray packet = "<rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\">"
                              "<rdf:Description rdf:about=\"\"" +
                              declarations + "/></rdf:RDF>";
    Exiv2::XmpData none;
    Exiv2::XmpParser::decode(none, packet.toStdString());
}

} // namespace

void prepareMetadataLibrary()
{
    static std::once_flag once;
    std::call_once(once, [] {
        Exiv2::LogMsg::setLevel(Exiv2::LogMsg::mute);
        Exiv2::LogMsg::setHandler(nullptr);
        Exiv2::enableBMFF(true);
        Exiv2::XmpParser::initialize(lockOrUnlock, &namespaceMutex());
        bindKnownNamespaces();
    });
}

const QHash<QString, QString> &knownNamespaces()
{
    static const QHash<QString, QString> known = [] {
        Exiv2::Dictionary dictionary; // by prefix
        Exiv2::XmpProperties::registeredNamespaces(dictionary);
        for (const KnownNamespace &entry : kNamespaces)
            dictionary[entry.prefix] = entry.address;
        dictionary["x"] = "adobe:ns:meta/";
        QHash<QString, QString> namespaces;
        for (const auto &[prefix, address] : dictionary) {
            // The library appends a slash to addresses without one of these ends.
            if (address.ends_with('/') || address.ends_with('#') || prefix == "xml")
                namespaces.insert(QString::fromStdString(prefix), QString::fromStdString(address));
        }
        return namespaces;
    }();
    return known;
}

std::unique_lock<std::recursive_mutex> lockXmpNamespaces()
{
    return std::unique_lock(namespaceMutex());
}

XmpTableGuard::~XmpTableGuard()
{
    bindKnownNamespaces();
}

} // namespace plexa
