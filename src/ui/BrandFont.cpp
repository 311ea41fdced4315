#include "ui/BrandFont.h"

#include <QApplication>
#include <QFile>
#include <QFontMetricsF>

#include <hb-ot.h>
#include <hb.h>

#include <algorithm>
#include <memory>

// The typeface is a resource list of the static core library; naming its initialiser keeps
// it linked into every program that draws the wordmark.
static void registerBrandResource()
{
    Q_INIT_RESOURCE(brand);
}

namespace zentoro::BrandFont {

namespace {

constexpr hb_tag_t widthTag = HB_TAG('w', 'd', 't', 'h');
constexpr hb_tag_t weightTag = HB_TAG('w', 'g', 'h', 't');

// The typeface's bytes and HarfBuzz face, read once and kept for the life of the process.
struct Typeface {
    QByteArray bytes;
    hb_face_t *face = nullptr;
    unsigned unitsPerEm = 1000;
};

const Typeface *typeface()
{
    static const Typeface *loaded = []() -> const Typeface * {
        registerBrandResource();
        QFile file(QStringLiteral(":/brand/Anybody.ttf"));
        if (!file.open(QIODevice::ReadOnly))
            return nullptr;
        auto *typeface = new Typeface{file.readAll()};
        hb_blob_t *blob = hb_blob_create(typeface->bytes.constData(), unsigned(typeface->bytes.size()),
                                         HB_MEMORY_MODE_READONLY, nullptr, nullptr);
        typeface->face = hb_face_create(blob, 0);
        hb_blob_destroy(blob);
        hb_ot_var_axis_info_t axis;
        if (hb_face_get_glyph_count(typeface->face) == 0 ||
            !hb_ot_var_find_axis_info(typeface->face, widthTag, &axis)) {
            hb_face_destroy(typeface->face);
            delete typeface;
            return nullptr;
        }
        typeface->unitsPerEm = hb_face_get_upem(typeface->face);
        return typeface;
    }();
    return loaded;
}

// Where the outline callbacks put a glyph: into `path`, moved by the glyph's pen position,
// scaled from font units to pixels and turned from y-up to y-down.
struct Pen {
    QPainterPath *path;
    double scale;
    double x;
    double y;

    QPointF at(float fx, float fy) const { return {x + fx * scale, y - fy * scale}; }
};

hb_draw_funcs_t *drawFunctions()
{
    static hb_draw_funcs_t *functions = [] {
        hb_draw_funcs_t *f = hb_draw_funcs_create();
        hb_draw_funcs_set_move_to_func(
            f,
            [](hb_draw_funcs_t *, void *data, hb_draw_state_t *, float x, float y, void *) {
                auto *pen = static_cast<Pen *>(data);
                pen->path->moveTo(pen->at(x, y));
            },
            nullptr, nullptr);
        hb_draw_funcs_set_line_to_func(
            f,
            [](hb_draw_funcs_t *, void *data, hb_draw_state_t *, float x, float y, void *) {
                auto *pen = static_cast<Pen *>(data);
                pen->path->lineTo(pen->at(x, y));
            },
            nullptr, nullptr);
        hb_draw_funcs_set_quadratic_to_func(
            f,
            [](hb_draw_funcs_t *, void *data, hb_draw_state_t *, float cx, float cy, float x, float y, void *) {
                auto *pen = static_cast<Pen *>(data);
                pen->path->quadTo(pen->at(cx, cy), pen->at(x, y));
            },
            nullptr, nullptr);
        hb_draw_funcs_set_cubic_to_func(
            f,
            [](hb_draw_funcs_t *, void *data, hb_draw_state_t *, float c1x, float c1y, float c2x, float c2y, float x,
               float y, void *) {
                auto *pen = static_cast<Pen *>(data);
                pen->path->cubicTo(pen->at(c1x, c1y), pen->at(c2x, c2y), pen->at(x, y));
            },
            nullptr, nullptr);
        hb_draw_funcs_set_close_path_func(
            f,
            [](hb_draw_funcs_t *, void *data, hb_draw_state_t *, void *) {
                static_cast<Pen *>(data)->path->closeSubpath();
            },
            nullptr, nullptr);
        hb_draw_funcs_make_immutable(f);
        return f;
    }();
    return functions;
}

using FontHandle = std::unique_ptr<hb_font_t, decltype(&hb_font_destroy)>;

FontHandle variableFont(const Typeface &typeface, double width, double weight)
{
    FontHandle font(hb_font_create(typeface.face), &hb_font_destroy);
    hb_font_set_scale(font.get(), int(typeface.unitsPerEm), int(typeface.unitsPerEm));
    const hb_variation_t axes[] = {{widthTag, float(width)}, {weightTag, float(weight)}};
    hb_font_set_variations(font.get(), axes, 2);
    return font;
}

// Shapes `text` and calls `glyph(font, codepoint, penX, penY)` for each glyph; returns the advance in pixels.
template <typename Visit>
double shape(const Font &face, const QString &text, Visit glyph)
{
    const Typeface &typeface = *BrandFont::typeface();
    FontHandle font = variableFont(typeface, face.width, face.weight);
    std::unique_ptr<hb_buffer_t, decltype(&hb_buffer_destroy)> buffer(hb_buffer_create(), &hb_buffer_destroy);
    hb_buffer_add_utf16(buffer.get(), reinterpret_cast<const uint16_t *>(text.utf16()), int(text.size()), 0,
                        int(text.size()));
    hb_buffer_guess_segment_properties(buffer.get());
    hb_shape(font.get(), buffer.get(), nullptr, 0);
    unsigned count = 0;
    const hb_glyph_info_t *infos = hb_buffer_get_glyph_infos(buffer.get(), &count);
    const hb_glyph_position_t *positions = hb_buffer_get_glyph_positions(buffer.get(), &count);
    const double scale = face.size / typeface.unitsPerEm;
    double x = 0;
    for (unsigned i = 0; i < count; ++i) {
        glyph(font.get(), infos[i].codepoint, x + positions[i].x_offset * scale, -positions[i].y_offset * scale, scale);
        x += positions[i].x_advance * scale;
    }
    return x;
}

QFont fallbackFont(double size)
{
    QFont font = QApplication::font();
    font.setPixelSize(std::max(1, qRound(size)));
    font.setWeight(QFont::ExtraBold);
    return font;
}

// Whether Anybody draws every character of `text`; it has Latin letters only, and a name in
// another script is drawn in a system face that has them.
bool covers(const QString &text)
{
    const Typeface &typeface = *BrandFont::typeface();
    FontHandle font(hb_font_create(typeface.face), &hb_font_destroy);
    for (const char32_t c : text.toUcs4()) {
        // Joiners and variation selectors shape with their neighbours and need no glyph.
        if (c == 0x200D || (c >= 0xFE00 && c <= 0xFE0F))
            continue;
        hb_codepoint_t glyph = 0;
        if (!hb_font_get_nominal_glyph(font.get(), c, &glyph))
            return false;
    }
    return true;
}

double verticalExtent(const Font &face, bool ascent)
{
    const Typeface &typeface = *BrandFont::typeface();
    FontHandle font = variableFont(typeface, face.width, face.weight);
    hb_font_extents_t extents;
    hb_font_get_h_extents(font.get(), &extents);
    const double scale = face.size / typeface.unitsPerEm;
    return ascent ? extents.ascender * scale : -extents.descender * scale;
}

} // namespace

double clampedWidth(double width)
{
    return std::clamp(width, minimumWidth, maximumWidth);
}

bool registered()
{
    return typeface() != nullptr;
}

Font anybody(double size, double width, double weight)
{
    return Font{size, clampedWidth(width), weight, registered()};
}

QPainterPath Font::outline(const QString &text) const
{
    // A variable font keeps a glyph's overlapping contours; TrueType fills them by winding.
    QPainterPath path;
    path.setFillRule(Qt::WindingFill);
    if (!isAnybody || !covers(text)) {
        path.addText(QPointF(0, 0), fallbackFont(size), text);
        return path;
    }
    shape(*this, text, [&](hb_font_t *font, hb_codepoint_t glyph, double x, double y, double scale) {
        Pen pen{&path, scale, x, y};
        hb_font_get_glyph_shape(font, glyph, drawFunctions(), &pen);
    });
    return path;
}

double Font::advance(const QString &text) const
{
    if (!isAnybody || !covers(text))
        return QFontMetricsF(fallbackFont(size)).horizontalAdvance(text);
    return shape(*this, text, [](hb_font_t *, hb_codepoint_t, double, double, double) {});
}

double Font::ascent() const
{
    return isAnybody ? verticalExtent(*this, true) : QFontMetricsF(fallbackFont(size)).ascent();
}

double Font::descent() const
{
    return isAnybody ? verticalExtent(*this, false) : QFontMetricsF(fallbackFont(size)).descent();
}

} // namespace zentoro::BrandFont
