#include "engine/compositing.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "engine/compose_rows.h"
#include "engine/frame_rects.h"
#include "engine/parallel.h"
#include "engine/pixel.h"
#include "engine/refraction_rows.h"
#include "engine/render.h"
#include "engine/shading/transparency.h"

namespace {

// The compositor looks straight down the z axis.
FZPackedVector ViewDirection()
{
    FZPackedVector v;
    v.x = 0;
    v.y = 0;
    v.z = -30000;
    return v;
}

void CopyRect(const FZImage& from, FZImage& to, const FZRect& rect)
{
    const std::size_t bytes = static_cast<std::size_t>(rect.x1 - rect.x0 + 1) * 3;
    ParallelCopyRows(rect.y0, rect.y1 + 1, static_cast<std::int64_t>(bytes), [&](std::int32_t y) {
        std::memcpy(to.PixelAddress(rect.x0, y), from.PixelAddress(rect.x0, y), bytes);
    });
}

// What is worked out once for a layer: a fully covered pixel
// that neither reflects nor refracts shows its shaded bytes through a table,
// and the attenuation factor of the transparency. Where the shaded image
// covers the layer and the transmission is the same at every pixel (no
// incidence dependence, no attenuation), a pixel's shade is its shaded
// bytes and its transmission that constant, as LookupShade would find.
struct ComposeShortcuts {
    bool opaqueTable = false;
    const std::uint8_t* table = nullptr;
    float attenuation = 0.0f;
    bool plainShade = false;
    float transmission = 0.0f;
};

// Everything that stays the same for all pixels of one layer.
struct LayerPass {
    FZScene& scene;
    const FZLayer& layer;
    const FZAttributeEx& material;
    float bias;     // z of the layer's depth 0
    bool reflects;
    bool refracts;
    FZRefraction refraction;
    ComposeShortcuts shortcuts;
};

// The memory along a row: neighbouring pixels often share their normal,
// and the sky a normal reflects depends on the normal alone.
struct NormalMemo {
    FZPackedVector skyNormal;
    bool hasSky = false;
    float sky[3] = {0.0f, 0.0f, 0.0f};
};

bool SameVector(const FZPackedVector& a, const FZPackedVector& b)
{
    return a.x == b.x && a.y == b.y && a.z == b.z;
}

// The image behind as the refraction's samples read it; without pixels every
// view sees the background.
FZBehindView BehindView(const FZScene& scene)
{
    FZBehindView view;
    const FZImage* image = scene.behind.get();
    CopyBackground(scene, view.background);
    if (image == nullptr || image->data.empty())
        return view;
    view.data = image->data.data();
    view.width = image->width;
    view.height = image->height;
    view.stride = image->stride;
    return view;
}

// The sky reflected along normal n, weighted by how squarely n faces the
// viewer. The sky is infinitely far away: where the ray starts does not
// matter, only its direction.
void ReflectedSky(const LayerPass& pass, const FZPackedVector& n, NormalMemo& memo, float sky[3])
{
    if (memo.hasSky && SameVector(memo.skyNormal, n)) {
        for (int c = 0; c < 3; ++c)
            sky[c] = memo.sky[c];
        return;
    }
    const double facing = -FZPackedVector::Dot(ViewDirection(), n);
    FZRay ray;
    ray.direction = n;
    ray.weight = static_cast<float>(pass.material.reflection * FZMax(0.0, facing));
    if (pass.scene.environment.skyTable.empty())
        LookupEnvironment(pass.scene.environment, ray, sky);
    else
        LookupSkyTable(pass.scene.environment, ray, sky);
    memo.skyNormal = n;
    memo.hasSky = true;
    for (int c = 0; c < 3; ++c)
        memo.sky[c] = sky[c];
}

// The covered pixels of a piece of a row that go through the pixel steps,
// gathered for the compositing kernel: their frame columns and lanes.
struct ComposePiece {
    std::int32_t count = 0;
    std::int32_t x[kFZComposePiece];
    FZComposeLanes lanes;
};

// What a layer that does not refract shows through itself.
constexpr float kNothingSeen[3] = {0.0f, 0.0f, 0.0f};

// One layer row as the pixel steps read it, with the frame row behind it.
struct RowView {
    std::int32_t ly;
    const std::uint8_t* coverage;
    const FZPackedVector* normals;  // null: an unprepared layer, facing the viewer
    const FZShadedPixel* shaded;    // null: the shade comes from LookupShade
    const std::uint8_t* behind;     // pixel 0 of the frame row
};

RowView ViewRow(const LayerPass& pass, const FZImage& behind, std::int32_t y, std::int32_t ly)
{
    const FZLayer& layer = pass.layer;
    return RowView{ly, layer.coverage[ly], layer.normals.empty() ? nullptr : layer.normals[ly],
                   pass.shortcuts.plainShade ? layer.shaded[ly] : nullptr,
                   behind.PixelAddress(0, y)};
}

// Gathers covered layer pixel lx of the row, over frame column x, into the
// piece's next lane: its shade with the sky it reflects, its coverage and
// transmission, what shows through it (seen, when the layer refracts) and
// the frame behind it.
[[gnu::always_inline]] inline void GatherPixel(const LayerPass& pass, const RowView& row, std::int32_t x,
                                               std::int32_t lx, NormalMemo& memo, const float seen[3],
                                               ComposePiece& piece)
{
    const float a = FZByteToFloat(row.coverage[lx]);
    if (!(a > 0.0f))
        return;

    float shade[3];
    float t = 0.0f;
    if (row.shaded != nullptr) {
        const std::uint8_t* p = row.shaded[lx].bgr;
        for (int c = 0; c < 3; ++c)
            shade[c] = FZByteToFloat(p[2 - c]);
        t = pass.shortcuts.transmission;
    } else {
        LookupShade(pass.layer, lx, row.ly, shade, t, pass.shortcuts.attenuation);
    }

    if (pass.reflects) {
        FZPackedVector n;
        n.z = 30000;
        if (row.normals != nullptr)
            n = row.normals[lx];
        float sky[3] = {0.0f, 0.0f, 0.0f};
        ReflectedSky(pass, n, memo, sky);
        for (int c = 0; c < 3; ++c)
            shade[c] = static_cast<float>(static_cast<double>(shade[c]) + sky[c]);
    }

    float through[3] = {0.0f, 0.0f, 0.0f};
    if (pass.refracts)
        std::copy(seen, seen + 3, through);

    float under[3];
    const std::uint8_t* b = row.behind + std::ptrdiff_t{3} * x;
    for (int c = 0; c < 3; ++c)
        under[c] = FZByteToFloat(b[2 - c]);

    const std::int32_t k = piece.count++;
    FZComposeLanes& lanes = piece.lanes;
    piece.x[k] = x;
    lanes.coverage[k] = a;
    lanes.transmission[k] = pass.refracts ? t : 0.0f;
    for (int c = 0; c < 3; ++c) {
        lanes.shade[c][k] = shade[c];
        lanes.through[c][k] = through[c];
        lanes.under[c][k] = under[c];
    }
}

// Composites the gathered pixels into frame row y and empties the piece.
void ComposeGathered(ComposePiece& piece, FZImage& frame, std::int32_t y)
{
    if (piece.count == 0)
        return;
    FZComposeBytes bytes;
    CompositePiece(piece.lanes, piece.count, bytes);
    std::uint8_t* row = frame.PixelAddress(0, y);
    for (std::int32_t k = 0; k < piece.count; ++k) {
        // Bytes go blue, green, red.
        std::uint8_t* p = row + std::ptrdiff_t{3} * piece.x[k];
        for (int c = 0; c < 3; ++c)
            p[2 - c] = static_cast<std::uint8_t>(bytes.rgb[c][k]);
    }
    piece.count = 0;
}

// Composites one frame row of the layer, columns x0 to x1. Rows are
// independent of each other: each reads the behind image and writes only its
// own frame row. A fully covered pixel that neither reflects nor refracts
// takes its bytes from the table (what the pixel steps give for a = 1 and
// nothing through or around); every other pixel goes through the pixel
// steps with the row's memory of normals.
void ComposeRow(const LayerPass& pass, const FZImage& behind, FZImage& frame, std::int32_t y,
                std::int32_t x0, std::int32_t x1)
{
    const std::int32_t ly = ClampToInt32(std::int64_t{y} - pass.layer.y);
    const FZSpan held = pass.layer.StoredRow(ly);
    const std::int32_t first = ClampToInt32(FZMax<std::int64_t>(x0, std::int64_t{pass.layer.x} + held.first));
    const std::int32_t last = ClampToInt32(FZMin<std::int64_t>(x1, std::int64_t{pass.layer.x} + held.last));
    if (first > last)
        return;
    NormalMemo memo;
    const ComposeShortcuts& shortcuts = pass.shortcuts;
    const std::uint8_t* coverage = pass.layer.coverage[ly];
    const FZShadedPixel* shaded = shortcuts.opaqueTable ? pass.layer.shaded[ly] : nullptr;
    std::uint8_t* out = frame.PixelAddress(0, y);
    ComposePiece piece;
    const RowView row = ViewRow(pass, behind, y, ly);
    for (std::int32_t x = first; x <= last; ++x) {
        const std::int32_t lx = x - pass.layer.x;
        const std::uint8_t c = coverage[lx];
        if (c == 0)
            continue;
        if (c == 255 && shaded != nullptr) {
            std::int32_t end = x + 1;
            while (end <= last && coverage[end - pass.layer.x] == 255)
                ++end;
            const std::uint8_t* from = shaded[lx].bgr;
            std::uint8_t* to = out + std::ptrdiff_t{3} * x;
            const std::ptrdiff_t bytes = std::ptrdiff_t{3} * (end - x);
            for (std::ptrdiff_t i = 0; i < bytes; ++i)
                to[i] = shortcuts.table[from[i]];
            x = end - 1;
            continue;
        }
        GatherPixel(pass, row, x, lx, memo, kNothingSeen, piece);
        if (piece.count == kFZComposePiece)
            ComposeGathered(piece, frame, y);
    }
    ComposeGathered(piece, frame, y);
}

// ComposeRow for a layer that refracts: the landing points of a piece of
// the row are found together, then its covered pixels composited.
void ComposeRefractingRow(const LayerPass& pass, const FZImage& behind, FZImage& frame, std::int32_t y,
                          std::int32_t x0, std::int32_t x1)
{
    const FZLayer& layer = pass.layer;
    const std::int32_t ly = ClampToInt32(std::int64_t{y} - layer.y);
    const FZSpan held = layer.StoredRow(ly);
    const std::int32_t first = ClampToInt32(FZMax<std::int64_t>(std::int64_t{x0} - layer.x, held.first));
    const std::int32_t last = ClampToInt32(FZMin<std::int64_t>(std::int64_t{x1} - layer.x, held.last));
    if (first > last)
        return;
    const std::uint8_t* coverage = layer.coverage[ly];
    const FZPackedVector* normals = layer.normals.empty() ? nullptr : layer.normals[ly];
    NormalMemo memo;
    FZLandingPoints points;
    FZSeenColours seen;
    const FZBehindView view = BehindView(pass.scene);
    ComposePiece piece;
    const RowView row = ViewRow(pass, behind, y, ly);
    static_assert(kFZRefractionPiece == kFZComposePiece, "a refraction piece fills one compositing piece");
    for (std::int32_t start = first; start <= last; start += kFZRefractionPiece) {
        const FZRefractionPiece part{start, FZMin(kFZRefractionPiece, last - start + 1), ly};
        if (std::all_of(coverage + start, coverage + start + part.n, [](std::uint8_t c) { return c == 0; }))
            continue;
        RefractRowPiece(pass.refraction, part, normals, layer.depth[ly], points);
        SeenThroughPiece(view, points, part.n, seen);
        for (std::int32_t k = 0; k < part.n; ++k) {
            const std::int32_t lx = start + k;
            if (coverage[lx] == 0)
                continue;
            const float through[3] = {static_cast<float>(seen.rgb[0][k]), static_cast<float>(seen.rgb[1][k]),
                                      static_cast<float>(seen.rgb[2][k])};
            GatherPixel(pass, row, lx + layer.x, lx, memo, through, piece);
        }
        ComposeGathered(piece, frame, y);
    }
}

// The shortcuts for the layer. The table holds the pixel
// steps' bytes for a full coverage, a shade byte b (read as LookupShade
// reads it) and nothing through or around; it serves only where the layer
// neither reflects nor refracts and its shaded image covers the layer.
void SetUpShortcuts(const LayerPass& pass, ComposeShortcuts& shortcuts)
{
    const FZLayer& layer = pass.layer;
    // The shaded image holds every pixel the rows hold.
    const bool covers = !layer.shaded.empty() && layer.shaded.Layout() == layer.coverage.Layout();
    shortcuts.opaqueTable = !pass.reflects && !pass.refracts && covers;
    struct Table {
        std::uint8_t opaque[256];
    };
    static const Table table = [] {
        // Every shade byte, fully covered, nothing through or around.
        Table t;
        static_assert(256 % kFZComposePiece == 0, "the table is whole pieces");
        FZComposeLanes lanes{};
        FZComposeBytes bytes;
        for (int first = 0; first < 256; first += kFZComposePiece) {
            for (std::int32_t k = 0; k < kFZComposePiece; ++k) {
                lanes.coverage[k] = 1.0;
                lanes.shade[0][k] = FZByteToFloat(static_cast<std::uint8_t>(first + k));
            }
            CompositePiece(lanes, kFZComposePiece, bytes);
            for (std::int32_t k = 0; k < kFZComposePiece; ++k)
                t.opaque[first + k] = static_cast<std::uint8_t>(bytes.rgb[0][k]);
        }
        return t;
    }();
    shortcuts.table = table.opaque;
    shortcuts.attenuation = AttenuationFactor(layer);
    const FZAttributeEx& m = layer.material;
    if (!(m.transparency > 0.0f)) {
        shortcuts.plainShade = covers;
        shortcuts.transmission = 0.0f;
    } else if (!(m.incidenceDependence > 0.0f) && !(m.attenuation > 0.0f)) {
        shortcuts.plainShade = covers;
        // The transmission held within [0, 1], as for every pixel.
        const float t = m.transparency;
        shortcuts.transmission = t > 1.0f ? 1.0f : t;
    }
}

// Whether the layer covers any pixel of frame rows y0 to y1 inside rect.
bool CoversAny(const FZLayer& layer, std::int32_t y0, std::int32_t y1, const FZRect& rect)
{
    const std::int32_t first = ClampToInt32(FZMax<std::int64_t>(rect.x0, layer.x) - layer.x);
    const std::int32_t last
        = ClampToInt32(FZMin<std::int64_t>(rect.x1, std::int64_t{layer.x} + layer.width - 1) - layer.x);
    for (std::int32_t y = y0; y <= y1; ++y)
        for (std::int32_t lx = first; lx <= last; ++lx)
            if (layer.CoverageAt(lx, y - layer.y) != 0)
                return true;
    return false;
}

// A layer that may reflect in more pixels than this looks the sky up in
// its table: twice the entries, so that building it costs at most half of
// what it saves.
constexpr std::int64_t kSkyTablePixels = 2 * (2 * std::int64_t{FZEnvironment::kSkyRows} + 1);

// A large reflecting layer has the sky's table built here, before its rows
// look the sky up from several threads at once.
void PrepareSky(const LayerPass& pass, std::int32_t y0, std::int32_t y1, const FZRect& rect)
{
    FZEnvironment& env = pass.scene.environment;
    const FZLayer& layer = pass.layer;
    const std::int64_t area
        = (std::int64_t{layer.boundsX1} - layer.boundsX0 + 1) * (std::int64_t{layer.boundsY1} - layer.boundsY0 + 1);
    // Without the table every pixel evaluates the ramp, which is as exact.
    if (area >= kSkyTablePixels && env.skyTable.empty() && CoversAny(layer, y0, y1, rect))
        static_cast<void>(BuildSkyTable(env));
}

// A flat layer that neither reflects nor refracts shows the bytes of its
// two shaded colours, as a fully covered pixel shows them through the table.
void ComposeFlatLayer(const LayerPass& pass, const FZRect& rect, FZImage& frame)
{
    const FZLayer& layer = pass.layer;
    FZRect area = LayerFrameRect(layer);
    if (!area.Intersect(rect))
        return;
    std::uint8_t bytes[2][3];
    for (int k = 0; k < 2; ++k)
        for (int c = 0; c < 3; ++c)
            bytes[k][c] = pass.shortcuts.table[layer.fill.shaded[k][c]];
    const std::int32_t cellWidth = layer.fill.cellWidth < 1 ? INT32_MAX : layer.fill.cellWidth;
    ParallelRows(area.y0, area.y1 + 1, [&](std::int32_t y) {
        const std::int32_t ly = y - layer.y;
        std::uint8_t* out = frame.PixelAddress(area.x0, y);
        const std::int32_t end = area.x1 - layer.x;
        for (std::int32_t lx = area.x0 - layer.x; lx <= end;) {
            const std::uint8_t* cell = bytes[layer.fill.CellOf(lx, ly)];
            const std::int32_t cellEnd = FZMin<std::int64_t>(end, (std::int64_t{lx} / cellWidth + 1) * cellWidth - 1);
            for (; lx <= cellEnd; ++lx, out += 3) {
                out[0] = cell[0];
                out[1] = cell[1];
                out[2] = cell[2];
            }
        }
    });
}

} // namespace

void ComposeLayer(FZScene& scene, std::int32_t index, const FZLayer& layer, const FZRect& rect,
                  FZImage& frame)
{
    const FZAttributeEx& m = layer.material;
    const float eta = m.refractiveIndex < 0.01f ? 1.0f : m.refractiveIndex;
    const float bias = index == 0 ? scene.groundDepth : scene.layerDepth;
    LayerPass pass{scene,
                   layer,
                   m,
                   bias,
                   m.reflection > 0.0f,
                   m.transparency > 0.0f,
                   FZRefraction{eta, bias, m.thinGlass != 0, m.thickness, layer.x, layer.y},
                   {}};
    if (layer.IsFlat()) {
        SetUpShortcuts(pass, pass.shortcuts);
        ComposeFlatLayer(pass, rect, frame);
        return;
    }
    // Only refraction looks at what lies behind other pixels than its own;
    // every other layer reads its own pixel of the frame before writing it.
    if (pass.refracts)
        CopyRect(frame, *scene.behind, rect);
    const FZImage& behind = pass.refracts ? *scene.behind : frame;
    if (layer.coverage.empty() || layer.depth.empty())
        return;
    const FZRect stored = StoredFrameRect(layer);
    const std::int32_t y0 = FZMax(rect.y0, stored.y0);
    const std::int32_t y1 = FZMin(rect.y1, stored.y1);
    if (y0 > y1)
        return;
    if (pass.reflects)
        PrepareSky(pass, y0, y1, rect);
    SetUpShortcuts(pass, pass.shortcuts);
    if (pass.refracts)
        ParallelRows(y0, y1 + 1,
                     [&](std::int32_t y) { ComposeRefractingRow(pass, behind, frame, y, rect.x0, rect.x1); });
    else
        ParallelRows(y0, y1 + 1, [&](std::int32_t y) { ComposeRow(pass, behind, frame, y, rect.x0, rect.x1); });
}
