// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QSize>
#include <QtEndian>

#include <map>
#include <vector>

namespace plexa::test
{

/// The contents of a DNG file.
struct DngPlan {
    QSize size = {96, 64};
    int bits = 16; ///< of a sample: 8 or 16
    int orientation = 0;
    bool hasPreview = false; ///< the first picture is a small magenta one, the sensor's data lie inside
    double pixelShape = 1;   ///< height of a pixel by its width
    QByteArray jpeg;         ///< instead of the filter array's samples: a JPEG of this size, of linear colors
};

/// Assembles a DNG file, uncompressed, of a filter array of red, green, green and blue: the left half of the
/// photo is red, the right half blue, and the top quarter white.
class DngAssembly
{
public:
    explicit DngAssembly(const DngPlan &plan)
        : m_plan(plan)
    {
        Directory raw = rawDirectory();
        Directory camera = cameraDirectory();
        if (plan.hasPreview) {
            const qsizetype rawAt = writeDirectory(raw);
            Directory preview = previewDirectory();
            preview.merge(camera);
            preview[0x014A] = longs({double(rawAt)});
            finish(writeDirectory(preview));
        } else {
            raw.merge(camera);
            finish(writeDirectory(raw));
        }
    }

    QByteArray bytes() const { return m_bytes; }

private:
    struct Entry {
        quint16 type;
        quint32 count;
        QByteArray data;
    };
    using Directory = std::map<quint16, Entry>;

    /// A number of `bytes` bytes.
    static QByteArray little(qint64 value, int bytes)
    {
        QByteArray number(8, '\0');
        qToLittleEndian(value, number.data());
        return number.first(bytes);
    }

    /// @param type  BYTE, SHORT, LONG, or a rational number
    static Entry entry(quint16 type, const std::vector<double> &values)
    {
        QByteArray data;
        for (const double value : values) {
            if (type == 5 || type == 10)
                data += little(qint64(value * 10000), 4) + little(10000, 4);
            else
                data += little(qint64(value), type == 3 ? 2 : type);
        }
        return {type, quint32(values.size()), data};
    }

    static Entry text(const QByteArray &data) { return {2, quint32(data.size()) + 1, data + '\0'}; }
    static Entry shorts(const std::vector<double> &values) { return entry(3, values); }
    static Entry longs(const std::vector<double> &values) { return entry(4, values); }

    qsizetype put(const QByteArray &data)
    {
        if (m_bytes.size() % 2 != 0)
            m_bytes += '\0';
        const qsizetype at = m_bytes.size();
        m_bytes += data;
        return at;
    }

    /// A sample of the sensor, 0 to 1.
    double sampleAt(int x, int y) const
    {
        const int color = x % 2 + y % 2; // 0 red, 1 green, 2 blue
        if (y < m_plan.size.height() / 4)
            return 0.9;
        return (x < m_plan.size.width() / 2 ? color == 0 : color == 2) ? 0.5 : 0.05;
    }

    Directory picture(QSize size, quint16 colorModel, const std::vector<double> &bits, const QByteArray &data)
    {
        return {{0x0100, longs({double(size.width())})},
                {0x0101, longs({double(size.height())})},
                {0x0102, shorts(bits)},
                {0x0103, shorts({1})},
                {0x0106, shorts({double(colorModel)})},
                {0x0111, longs({double(put(data))})},
                {0x0115, shorts({double(bits.size())})},
                {0x0116, longs({double(size.height())})},
                {0x0117, longs({double(data.size())})}};
    }

    Directory rawDirectory()
    {
        if (!m_plan.jpeg.isEmpty())
            return jpegDirectory();
        QByteArray samples;
        const int white = m_plan.bits == 8 ? 255 : 65535;
        for (int y = 0; y < m_plan.size.height(); ++y) {
            for (int x = 0; x < m_plan.size.width(); ++x)
                samples += little(qint64(sampleAt(x, y) * white), m_plan.bits / 8);
        }
        Directory raw = picture(m_plan.size, 32803, {double(m_plan.bits)}, samples);
        raw[0x00FE] = longs({0});
        raw[0x828D] = shorts({2, 2});
        raw[0x828E] = entry(1, {0, 1, 1, 2});
        raw[0xC61D] = longs({double(white)});
        raw[0xC61E] = entry(5, {1, m_plan.pixelShape});
        return raw;
    }

    Directory jpegDirectory()
    {
        Directory raw = picture(m_plan.size, 34892, {8, 8, 8}, m_plan.jpeg);
        raw[0x00FE] = longs({0});
        raw[0x0103] = shorts({34892}); // JPEG with losses
        raw[0x0142] = longs({double(m_plan.size.width())});
        raw[0x0143] = longs({double(m_plan.size.height())});
        raw[0x0144] = raw[0x0111];
        raw[0x0145] = raw[0x0117];
        for (const quint16 tag : std::initializer_list<quint16>{0x0111, 0x0116, 0x0117}) // strips
            raw.erase(tag);
        return raw;
    }

    Directory previewDirectory()
    {
        const QSize size(24, 16);
        Directory preview =
            picture(size, 2, {8, 8, 8}, QByteArray("\xff\0\xff", 3).repeated(size.width() * size.height()));
        preview[0x00FE] = longs({1});
        return preview;
    }

    Directory cameraDirectory() const
    {
        Directory camera{{0x010F, text("Maker")},
                         {0x0110, text("Camera 1")},
                         {0xC612, entry(1, {1, 4, 0, 0})},
                         {0xC613, entry(1, {1, 1, 0, 0})},
                         {0xC614, text("Maker Camera 1")},
                         {0xC621, entry(10, {0.9, -0.3, -0.1, -0.4, 1.2, 0.2, -0.05, 0.15, 0.6})},
                         {0xC628, entry(5, {0.5, 1, 0.7})},
                         {0xC65A, shorts({21})}};
        if (m_plan.orientation > 0)
            camera[0x0112] = shorts({double(m_plan.orientation)});
        return camera;
    }

    qsizetype writeDirectory(const Directory &directory)
    {
        QByteArray table = little(qint64(directory.size()), 2);
        for (const auto &[tag, field] : directory) {
            table += little(tag, 2) + little(field.type, 2) + little(field.count, 4);
            table += field.data.size() <= 4 ? field.data.leftJustified(4, '\0') : little(put(field.data), 4);
        }
        return put(table + QByteArray(4, '\0'));
    }

    void finish(qsizetype mainDirectory) { m_bytes.replace(4, 4, little(mainDirectory, 4)); }

    const DngPlan m_plan;
    QByteArray m_bytes{"II*\0\0\0\0\0", 8};
};

inline QByteArray assembledDng(const DngPlan &plan)
{
    return DngAssembly(plan).bytes();
}

} // namespace plexa::test
