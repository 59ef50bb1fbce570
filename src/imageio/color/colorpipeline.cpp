// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/color/colorpipeline.h"

#include "imageio/color/srgbcurve.h"

#include <lcms2_plugin.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace plexa
{

namespace
{

/// Pixels that pass all stages together: they stay in the first cache of the processor.
constexpr int kBlock = 128;

/// Larger grids are evaluated by the library.
constexpr size_t kMaxNodes = size_t{4} << 20;

constexpr int kMaxWord = 65535;

/// Encodes light as bytes of sRGB, rounded to the nearest.
class SrgbEncoder
{
public:
    SrgbEncoder()
    {
        int code = 0;
        for (int bucket = 0; bucket <= kBuckets; ++bucket) {
            while (code < 255 && lightOf(code + 0.5) <= double(bucket) / kBuckets)
                ++code;
            m_codes[size_t(bucket)] = uchar(code);
            m_borders[size_t(bucket)] =
                code < 255 ? float(lightOf(code + 0.5)) : std::numeric_limits<float>::infinity();
        }
    }

    /// @param light  red, green, blue, each 0..1
    /// @return a pixel without alpha
    template<class Quad>
    QRgb encoded(Quad light) const
    {
        const Quad buckets = light * kBuckets;
        const auto code = [&](int channel) {
            const auto bucket = size_t(int(buckets[channel]));
            return m_codes[bucket] + (light[channel] >= m_borders[bucket] ? 1 : 0);
        };
        return QRgb(code(0) << 16 | code(1) << 8 | code(2));
    }

private:
    /// A bucket is narrower than the light between two codes, and thus contains one border at most.
    static constexpr int kBuckets = 4096;

    static double lightOf(double code) { return srgbLight(code / 255); }

    std::array<uchar, kBuckets + 1> m_codes;   ///< at the lower end of each bucket
    std::array<float, kBuckets + 1> m_borders; ///< to the next code
};

const SrgbEncoder &srgbEncoder()
{
    static const SrgbEncoder encoder;
    return encoder;
}

/// The samples of opaque pixels, side by side.
template<class Sample, int channels>
struct Samples {
    static constexpr int kChannels = channels;
    const Sample *in;
    int sample(qsizetype pixel, int channel) const { return in[pixel * channels + channel]; }
    QRgb alpha(qsizetype) const { return 0xff000000; }
};

struct Pixels {
    static constexpr int kChannels = 3;
    const QRgb *in;
    int sample(qsizetype pixel, int channel) const { return int(in[pixel] >> (16 - 8 * channel)) & 0xff; }
    QRgb alpha(qsizetype pixel) const { return in[pixel] & 0xff000000; }
};

/// 0..1, also of what is not a number.
template<class Values>
Values clamped(Values values)
{
    values = values > 0 ? values : Values{};
    return values < 1 ? values : Values{} + 1;
}

template<class Values>
Values wholePart(Values values)
{
    return __builtin_convertvector(__builtin_convertvector(values, int __attribute__((vector_size(16)))),
                                   Values);
}

/// @return a curve at `count` places from 0 to 1
std::vector<float> sampledCurve(const cmsToneCurve *curve, int count)
{
    std::vector<float> samples(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i)
        samples[size_t(i)] = cmsEvalToneCurveFloat(curve, float(i) / float(count - 1));
    return samples;
}

std::vector<float> identity(int count)
{
    std::vector<float> samples(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i)
        samples[size_t(i)] = float(i) / float(count - 1);
    return samples;
}

bool isIdentity(const std::vector<float> &samples)
{
    const float last = float(samples.size() - 1);
    for (size_t i = 0; i < samples.size(); ++i) {
        if (!(std::abs(samples[i] - float(i) / last) < 1e-6F))
            return false;
    }
    return true;
}

} // namespace

ColorPipeline::ColorPipeline(LcmsPipeline pipeline, int maxSample)
    : m_pipeline(std::move(pipeline))
    , m_maxSample(maxSample)
    , m_channels(int(cmsPipelineInputChannels(m_pipeline.get())))
{
    if (m_channels == 1)
        makeGrayTable();
    else
        m_hasStages = addStages();
}

void ColorPipeline::makeGrayTable()
{
    m_grays.resize(size_t(m_maxSample) + 1);
    for (int i = 0; i <= m_maxSample; ++i) {
        const float sample = float(i) / float(m_maxSample);
        m_grays[size_t(i)] = 0xff000000 | evaluated(&sample);
    }
}

/// The pixel without alpha, by the library.
QRgb ColorPipeline::evaluated(const float *samples) const
{
    std::array<float, 3> color = {};
    cmsPipelineEvalFloat(samples, color.data(), m_pipeline.get());
    const auto byte = [](float value) { return int(std::lround(255 * clamped(value))); };
    return QRgb(byte(color[0]) << 16 | byte(color[1]) << 8 | byte(color[2]));
}

/// @return false if a stage is of an unusual kind
bool ColorPipeline::addStages()
{
    const cmsStage *stage = cmsPipelineGetPtrToFirstStage(m_pipeline.get());
    const cmsStage *const last = cmsPipelineGetPtrToLastStage(m_pipeline.get());
    // The last curves are those of sRGB, which SrgbEncoder has.
    if (!stage || stage == last || cmsStageType(last) != cmsSigCurveSetElemType)
        return false;
    const bool startsWithCurves = cmsStageType(stage) == cmsSigCurveSetElemType;
    makeInputTables(startsWithCurves ? stage : nullptr);
    for (stage = startsWithCurves ? cmsStageNext(stage) : stage; stage != last; stage = cmsStageNext(stage)) {
        const cmsStage *const next = cmsStageNext(stage);
        if (cmsStageType(stage) == cmsSigXYZ2LabElemType && cmsStageType(next) == cmsSigLab2XYZElemType)
            stage = next;
        else if (!addStage(stage))
            return false;
    }
    return true;
}

void ColorPipeline::makeInputTables(const cmsStage *curves)
{
    for (size_t channel = 0; channel < size_t(m_channels); ++channel) {
        std::vector<float> table =
            curves ? sampledCurve(
                         static_cast<_cmsStageToneCurvesData *>(cmsStageData(curves))->TheCurves[channel],
                         m_maxSample + 1)
                   : identity(m_maxSample + 1);
        // Equal curves share a table, which then fits the cache of the processor.
        const auto known = std::find(m_tables.begin(), m_tables.end(), table);
        m_tableOfChannel[channel] = size_t(known - m_tables.begin());
        if (known == m_tables.end())
            m_tables.push_back(std::move(table));
    }
}

bool ColorPipeline::addStage(const cmsStage *stage)
{
    if (cmsStageOutputChannels(stage) != 3 ||
        (cmsStageInputChannels(stage) != 3 && cmsStageType(stage) != cmsSigCLutElemType))
        return false;
    switch (cmsStageType(stage)) {
    case cmsSigCurveSetElemType:
        return addCurves(stage);
    case cmsSigMatrixElemType:
        return addMatrix(stage);
    case cmsSigCLutElemType:
        return addGrid(stage);
    case cmsSigLab2XYZElemType:
        m_stages.emplace_back(LabToXyz{});
        return true;
    default:
        return cmsStageType(stage) == cmsSigIdentityElemType;
    }
}

bool ColorPipeline::addMatrix(const cmsStage *stage)
{
    const auto *data = static_cast<_cmsStageMatrixData *>(cmsStageData(stage));
    Matrix matrix = {};
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column)
            matrix.columns[size_t(column)][row] = float(data->Double[3 * row + column]);
        if (data->Offset)
            matrix.offset[row] = float(data->Offset[row]);
    }
    auto *const before = m_stages.empty() ? nullptr : std::get_if<Matrix>(&m_stages.back());
    if (!before) {
        m_stages.emplace_back(matrix);
        return true;
    }
    matrix.apply(&before->offset, 1);
    matrix.offset = Quad{};
    matrix.apply(before->columns.data(), 3);
    return true;
}

bool ColorPipeline::addCurves(const cmsStage *stage)
{
    const auto *data = static_cast<_cmsStageToneCurvesData *>(cmsStageData(stage));
    Curves curves;
    bool isNeeded = false;
    for (size_t i = 0; i < 3; ++i) {
        const cmsToneCurve *const curve = data->TheCurves[i];
        curves.curves[i] = curve;
        curves.tables[i] = sampledCurve(curve, kMaxWord + 1);
        // A curve that only bounds the values is not needed after a grid, which is bounded itself.
        const bool isEndless = cmsEvalToneCurveFloat(curve, -1) == -1 && cmsEvalToneCurveFloat(curve, 2) == 2;
        const bool isBounded = !m_stages.empty() && std::holds_alternative<Grid>(m_stages.back());
        isNeeded = isNeeded || !isIdentity(curves.tables[i]) || !(isEndless || isBounded);
    }
    if (isNeeded)
        m_stages.emplace_back(std::move(curves));
    return true;
}

bool ColorPipeline::addGrid(const cmsStage *stage)
{
    const auto *data = static_cast<_cmsStageCLutData *>(cmsStageData(stage));
    const cmsInterpParams &params = *data->Params;
    const size_t nodes = data->nEntries / 3;
    if ((params.nInputs != 3 && params.nInputs != 4) || nodes > kMaxNodes ||
        (params.dwFlags & CMS_LERP_FLAGS_TRILINEAR) != 0)
        return false;
    Grid grid;
    grid.channels = int(params.nInputs);
    float step = 1;
    for (int i = grid.channels - 1; i >= 0; --i) {
        if (params.nSamples[i] < 2)
            return false;
        grid.cells[i] = float(params.nSamples[i] - 1);
        grid.steps[i] = step;
        step *= float(params.nSamples[i]);
    }
    grid.findCorners();
    grid.nodes.resize(nodes);
    for (size_t i = 0; i < nodes; ++i) {
        for (size_t channel = 0; channel < 3; ++channel)
            grid.nodes[i][channel] = data->HasFloatValues ? data->Tab.TFloat[3 * i + channel]
                                                          : float(data->Tab.T[3 * i + channel]) / kMaxWord;
    }
    m_stages.emplace_back(std::move(grid));
    return true;
}

void ColorPipeline::Grid::findCorners()
{
    const qsizetype x = step(channels - 3), y = step(channels - 2), z = step(channels - 1);
    for (size_t order = 0; order < corners.size(); ++order) {
        const bool xy = (order & 1) != 0, xz = (order & 2) != 0, yz = (order & 4) != 0; // x >= y, ...
        const qsizetype largest = xy && xz ? x : yz ? y : z;
        const qsizetype smallest = xz && yz ? z : xy ? y : x;
        corners[order] = {largest, x + y + z - smallest};
    }
}

void ColorPipeline::Matrix::apply(Quad *colors, int count) const
{
    for (int i = 0; i < count; ++i) {
        const Quad color = colors[i];
        colors[i] = columns[0] * color[0] + columns[1] * color[1] + columns[2] * color[2] + offset;
    }
}

void ColorPipeline::Curves::apply(Quad *colors, int count) const
{
    for (size_t channel = 0; channel < 3; ++channel) {
        const float *const table = tables[channel].data();
        for (int i = 0; i < count; ++i) {
            const float value = colors[i][channel];
            if (!(value >= 0 && value <= 1)) {
                colors[i][channel] = cmsEvalToneCurveFloat(curves[channel], value);
                continue;
            }
            const int entry = std::min(int(value * kMaxWord), kMaxWord - 1);
            const float part = value * kMaxWord - float(entry);
            colors[i][channel] = table[entry] + part * (table[entry + 1] - table[entry]);
        }
    }
}

/// Tetrahedral in the last three channels as Little CMS does it, and linear in the first one of four.
template<int channels>
void ColorPipeline::Grid::interpolate(Quad *colors, int count) const
{
    constexpr int kX = channels - 3, kY = kX + 1, kZ = kX + 2;
    const auto smaller = [](float a, float b) { return a < b ? a : b; };
    const auto larger = [](float a, float b) { return a > b ? a : b; };
    const qsizetype toOpposite = step(kX) + step(kY) + step(kZ);
    const Quad lastCell = cells - 1;
    for (int i = 0; i < count; ++i) {
        const Quad place = clamped(colors[i]) * cells;
        const Quad cell = wholePart(place < lastCell ? place : lastCell);
        const Quad part = place - cell;
        const Quad index = cell * steps; // exact: less than 2^24
        const Quad *const node = nodes.data() + qsizetype(index[0] + index[1] + index[2] + index[3]);
        const float x = part[kX], y = part[kY], z = part[kZ];
        // The weights of the corners on the way to the opposite one, the channel with the largest part first.
        const float high = larger(larger(x, y), z);
        const float middle = larger(smaller(x, y), smaller(larger(x, y), z));
        const float low = smaller(smaller(x, y), z);
        const Corners &way = corners[size_t(int(x >= y) | int(x >= z) << 1 | int(y >= z) << 2)];
        const auto inCube = [&](const Quad *from) {
            return from[0] * (1 - high) + from[way.second] * (high - middle) +
                   from[way.third] * (middle - low) + from[toOpposite] * low;
        };
        const Quad color = inCube(node);
        colors[i] = channels == 3 ? color : color + part[0] * (inCube(node + step(0)) - color);
    }
}

void ColorPipeline::Grid::apply(Quad *colors, int count) const
{
    if (channels == 3)
        interpolate<3>(colors, count);
    else
        interpolate<4>(colors, count);
}

/// CIE 15: from the encoding of Lab in ICC.1:2010 (6.3.4.2) to XYZ, 1 + 32767 / 32768 for 1.
void ColorPipeline::LabToXyz::apply(Quad *colors, int count) const
{
    constexpr double kFullXyz = 1 + 32767.0 / 32768;
    constexpr Quad kWhite = {float(cmsD50X / kFullXyz), float(cmsD50Y / kFullXyz), float(cmsD50Z / kFullXyz)};
    for (int i = 0; i < count; ++i) {
        const float y = (100 * colors[i][0] + 16) / 116;
        const float x = y + (255 * colors[i][1] - 128) / 500;
        const float z = y - (255 * colors[i][2] - 128) / 200;
        const Quad roots = {x, y, z};
        const Quad dark = (roots - 16.F / 116) * (108.F / 841);
        colors[i] = kWhite * (roots > 24.F / 116 ? roots * roots * roots : dark);
    }
}

template<class Source>
void ColorPipeline::convertInStages(Source source, QRgb *out, qsizetype count) const
{
    std::array<const float *, 4> tables;
    for (size_t i = 0; i < tables.size(); ++i)
        tables[i] = m_tables[m_tableOfChannel[i]].data();
    const SrgbEncoder &encoder = srgbEncoder();
    std::array<Quad, kBlock> colors;
    for (qsizetype begin = 0; begin < count; begin += kBlock) {
        const int block = int(std::min<qsizetype>(count - begin, kBlock));
        for (int i = 0; i < block; ++i) {
            const auto entry = [&](int channel) {
                return tables[size_t(channel)][source.sample(begin + i, channel)];
            };
            colors[size_t(i)] = Quad{entry(0), entry(1), entry(2), Source::kChannels == 4 ? entry(3) : 0};
        }
        for (const Stage &stage : m_stages)
            std::visit([&](const auto &known) { known.apply(colors.data(), block); }, stage);
        for (int i = 0; i < block; ++i)
            out[begin + i] = source.alpha(begin + i) | encoder.encoded(clamped(colors[size_t(i)]));
    }
}

template<class Source>
void ColorPipeline::convertAny(Source source, QRgb *out, qsizetype count) const
{
    if (m_hasStages) {
        convertInStages(source, out, count);
        return;
    }
    for (qsizetype i = 0; i < count; ++i) {
        std::array<float, 4> samples = {};
        for (int channel = 0; channel < Source::kChannels; ++channel)
            samples[size_t(channel)] = float(source.sample(i, channel)) / float(m_maxSample);
        out[i] = source.alpha(i) | evaluated(samples.data());
    }
}

template<class Sample>
void ColorPipeline::convertSamples(const Sample *in, QRgb *out, qsizetype count) const
{
    if (!m_grays.empty())
        std::transform(in, in + count, out, [this](Sample sample) { return m_grays[sample]; });
    else if (m_channels == 3)
        convertAny(Samples<Sample, 3>{in}, out, count);
    else
        convertAny(Samples<Sample, 4>{in}, out, count);
}

void ColorPipeline::convert(const void *in, QRgb *out, qsizetype count) const
{
    if (m_maxSample == kMaxWord)
        convertSamples(static_cast<const quint16 *>(in), out, count);
    else
        convertSamples(static_cast<const uchar *>(in), out, count);
}

void ColorPipeline::convertPixels(QRgb *pixels, qsizetype count) const
{
    convertAny(Pixels{pixels}, pixels, count);
}

qint64 ColorPipeline::bytes() const
{
    const qint64 table = qint64(m_maxSample + 1) * qint64(sizeof(float));
    qint64 sum = table * qint64(m_tables.size() + (m_grays.empty() ? 0 : 1));
    for (const Stage &stage : m_stages) {
        if (const auto *grid = std::get_if<Grid>(&stage))
            sum +=
                qint64(grid->nodes.size() * (sizeof(Quad) + 3 * sizeof(quint16))); // and that of the library
        else if (std::holds_alternative<Curves>(stage))
            sum += 3 * qint64(kMaxWord + 1) * qint64(sizeof(float));
    }
    return sum;
}

} // namespace plexa
