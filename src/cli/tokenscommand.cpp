// SPDX-License-Identifier: GPL-3.0-or-later

#include "cli/listcommands.h"
#include "cli/messages.h"
#include "saving/namingtokens.h"
#include "watermark/texttokens.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <CLI/CLI.hpp>

namespace plexa
{
namespace
{

/// The properties of a photo that has all facts.
constexpr char kSample[] = R"({"ColorModel":"RGB","DPIHeight":300,"DPIWidth":300,"Depth":8,
"ProfileName":"Display P3",
"{ExifAux}":{"ImageNumber":4211,"LensID":61182,"LensModel":"24-70mm F4","SerialNumber":"0042017"},
"{Exif}":{"DateTimeOriginal":"2024:09:14 06:52:18","OffsetTimeOriginal":"+02:00","SubsecTimeOriginal":"42",
"ExposureBiasValue":0.7,"ExposureProgram":3,"ExposureTime":0.00625,"FNumber":8,"Flash":16,"FocalLength":31,
"FocalLenIn35mmFilm":31,"ISOSpeedRatings":[100],"MeteringMode":5,"LensModel":"24-70mm F4",
"BodySerialNumber":"0042017","UserComment":"before breakfast"},
"{GPS}":{"Altitude":1843,"AltitudeRef":0,"Latitude":46.6051,"LatitudeRef":"N","Longitude":10.4127,
"LongitudeRef":"E"},
"{IPTC}":{"Byline":["Ida Lindqvist"],"BylineTitle":["Photographer"],"Writer/Editor":["Mo Berg"],
"Caption/Abstract":"The first sun on the ridge.","City":"Talheim","CopyrightNotice":"2024 Ida Lindqvist",
"Country/PrimaryLocationName":"Norway","Headline":"First light on the lake","ObjectName":"Mirror Lake",
"Province/State":"Highlands","SubLocation":"Upper Mirror Lake",
"CreatorContactInfo":{"CiAdrCity":"Talheim","CiAdrCtry":"Norway","CiAdrRegion":"Highlands","CiAdrPcode":"2470",
"CiAdrExtadr":"Lake Road 3","CiEmailWork":"ida@example.org","CiTelWork":"+47 555 0123",
"CiUrlWork":"https://example.org/"}},
"{TIFF}":{"Make":"Fernblick","Model":"FB-7","Software":"Fernblick 2.1"}})";

PhotoFacts sampleFacts()
{
    const QVariantMap properties = QJsonDocument::fromJson(kSample).object().toVariantMap();
    constexpr QSize kSize(6000, 4000);
    return PhotoFacts(QStringLiteral("IMG_4211.jpg"), ImageMetadata(properties), kSize, kSize,
                      LocaleFormat());
}

} // namespace

std::vector<TokenRow> allTokens()
{
    std::vector<TokenRow> rows;
    const PhotoFacts facts = sampleFacts();
    for (const QString &token : tokenNames())
        rows.push_back({token, facts.stringForInfoToken(token).value_or(QString()), false});
    for (const QString &token : namingTokenNames()) {
        const auto text =
            namingTokenText(token, 7, QStringLiteral("Caption bar"), QStringLiteral("JPEG for the web"));
        rows.push_back({token, text.value_or(QString()), true});
    }
    return rows;
}

CLI::App *addTokensCommand(CLI::App &program, ListOptions &options)
{
    CLI::App *command =
        program.add_subcommand("tokens", "List the tokens of texts and of names, each with an example");
    command->add_flag("--json", options.json, "Print an array with an object for each token");
    return command;
}

int runTokens(const ListOptions &options)
{
    constexpr qsizetype kColumn = 24;
    QJsonArray objects;
    if (!options.json)
        printLine(stdout,
                  QStringLiteral("Tokens of texts (--text) and of names of copies (--name), in braces:"));
    bool isForNamesOnly = false;
    for (const TokenRow &token : allTokens()) {
        objects.append(QJsonObject{{QStringLiteral("name"), token.name},
                                   {QStringLiteral("example"), token.example},
                                   {QStringLiteral("namesOnly"), token.isForNamesOnly}});
        if (options.json)
            continue;
        if (token.isForNamesOnly && !std::exchange(isForNamesOnly, true))
            printLine(stdout, QStringLiteral("\nTokens of names of copies only:"));
        printLine(stdout, (QStringLiteral("  ") + token.name).leftJustified(kColumn) + token.example);
    }
    if (options.json)
        printJson(objects);
    return kAllDone;
}

} // namespace plexa
