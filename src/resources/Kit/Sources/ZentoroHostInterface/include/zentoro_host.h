/* The one interface between Zentoro's Qt host and the hosted UI kit.
 *
 * The kit owns the view graph, state, layout and hit testing. The host draws what the kit
 * describes, measures text, hosts native text fields, delivers pointer and key events, and
 * keeps the kit's main queue and run loop serviced inside its own event loop.
 *
 * Coordinates are logical pixels with the origin at the top left of the hosted view.
 * Strings are UTF-8 and only valid for the duration of the call that passes them.
 * Every call in either direction happens on the main thread.
 */
#ifndef ZENTORO_HOST_H
#define ZENTORO_HOST_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Raised whenever a field, a function or a meaning below changes. The host refuses a kit
 * whose `zentoro_kit_interface_version()` differs from the value it was built with. */
#define ZENTORO_HOST_INTERFACE_VERSION 4

typedef struct {
    double x, y;
} ZentoroPoint;
typedef struct {
    double x, y, width, height;
} ZentoroRect;
/* Components from 0 to 1, not premultiplied, sRGB. */
typedef struct {
    double red, green, blue, alpha;
} ZentoroColor;

enum {
    ZENTORO_PATH_MOVE = 0,  /* points[0] */
    ZENTORO_PATH_LINE = 1,  /* points[0] */
    ZENTORO_PATH_QUAD = 2,  /* control points[0], end points[1] */
    ZENTORO_PATH_CUBIC = 3, /* controls points[0], points[1], end points[2] */
    ZENTORO_PATH_CLOSE = 4
};
typedef struct {
    int32_t op;
    ZentoroPoint points[3];
} ZentoroPathElement;
typedef struct {
    const ZentoroPathElement *elements;
    int32_t count;
    int32_t evenOdd; /* fill rule: 0 non-zero winding, 1 even-odd */
} ZentoroPath;

enum {
    ZENTORO_PAINT_SOLID = 0,
    ZENTORO_PAINT_LINEAR = 1, /* from `start` to `end` */
    ZENTORO_PAINT_RADIAL = 2, /* centred on `start`, from `startRadius` to `endRadius` */
    ZENTORO_PAINT_ANGULAR = 3 /* centred on `start`, beginning at `angle` degrees, clockwise */
};
typedef struct {
    double location;
    ZentoroColor color;
} ZentoroGradientStop;
typedef struct {
    int32_t kind;
    ZentoroColor color; /* the solid colour */
    const ZentoroGradientStop *stops;
    int32_t stopCount;
    ZentoroPoint start, end;
    double startRadius, endRadius;
    double angle;
} ZentoroPaint;

enum { ZENTORO_CAP_BUTT = 0, ZENTORO_CAP_ROUND = 1, ZENTORO_CAP_SQUARE = 2 };
enum { ZENTORO_JOIN_MITER = 0, ZENTORO_JOIN_ROUND = 1, ZENTORO_JOIN_BEVEL = 2 };
typedef struct {
    double lineWidth;
    int32_t cap;
    int32_t join;
    double miterLimit;
    const double *dashes; /* lengths in logical pixels */
    int32_t dashCount;
    double dashPhase;
} ZentoroStroke;

enum {
    ZENTORO_DESIGN_DEFAULT = 0,
    ZENTORO_DESIGN_MONOSPACED = 1,
    ZENTORO_DESIGN_ROUNDED = 2,
    ZENTORO_DESIGN_SERIF = 3
};
typedef struct {
    double size;    /* logical pixels */
    int32_t weight; /* 100 (ultra light) to 900 (black); 400 regular, 700 bold */
    int32_t design;
    int32_t italic;
    int32_t monospacedDigits;
} ZentoroFont;

/* One styled run of a text; a text is one or more runs laid out as one paragraph. */
typedef struct {
    const char *utf8;
    ZentoroFont font;
    ZentoroPaint paint;
    int32_t underline;
    int32_t strikethrough;
} ZentoroTextRun;

enum { ZENTORO_ALIGN_LEADING = 0, ZENTORO_ALIGN_CENTER = 1, ZENTORO_ALIGN_TRAILING = 2 };
typedef struct {
    const ZentoroTextRun *runs;
    int32_t runCount;
    int32_t alignment; /* of lines within the paragraph */
    int32_t lineLimit; /* 0: no limit; the last line shown ends in an ellipsis when cut */
} ZentoroText;

enum {
    ZENTORO_FIELD_SECURE = 1, /* shows bullets in place of the characters */
    ZENTORO_FIELD_FOCUS = 2,  /* the kit wants this field to take the keyboard focus */
    ZENTORO_FIELD_DISABLED = 4,
    ZENTORO_FIELD_PLAIN = 8,     /* no frame: the kit draws the field's surroundings */
    ZENTORO_FIELD_MULTILINE = 16 /* an editor of several lines: Return starts a new line */
};

/* What the host offers the kit. The kit keeps the pointer it is given by `zentoro_view_attach`;
 * the host keeps the struct alive until it releases the view. */
typedef struct ZentoroHost {
    int32_t version; /* ZENTORO_HOST_INTERFACE_VERSION */
    void *context;   /* passed back as the first argument of every function below */

    /* The size a text takes when it may wrap at `maxWidth` (no wrapping when negative). */
    void (*measureText)(void *context, const ZentoroText *text, double maxWidth, double *outWidth, double *outHeight);

    /* Drawing, valid only inside `zentoro_view_render`. The state stack holds the transform,
     * the clip and the opacity. */
    void (*save)(void *context);
    void (*restore)(void *context);
    void (*concatTransform)(void *context, double a, double b, double c, double d, double tx, double ty);
    void (*multiplyOpacity)(void *context, double opacity);
    void (*clipPath)(void *context, const ZentoroPath *path);
    void (*fillPath)(void *context, const ZentoroPath *path, const ZentoroPaint *paint);
    void (*strokePath)(void *context, const ZentoroPath *path, const ZentoroPaint *paint, const ZentoroStroke *stroke);
    /* Draws `path` filled with `color` blurred by `radius`, offset by (dx, dy): a shadow. */
    void (*shadowPath)(void *context, const ZentoroPath *path, ZentoroColor color, double radius, double dx, double dy);
    void (*drawText)(void *context, const ZentoroText *text, ZentoroRect rect);
    /* A named symbol icon fitted into `rect`; unknown names draw a neutral glyph. */
    void (*drawSymbol)(void *context, const char *name, ZentoroRect rect, const ZentoroPaint *paint);

    /* Native text entry. During a render the kit places every text field that is on screen,
     * each with an identifier that stays the same while the field exists; fields not placed
     * in a render are removed. The host shows `text` only when it differs from what the field
     * holds, so typing is never interrupted. */
    void (*placeTextField)(void *context, int64_t identifier, ZentoroRect rect, const char *text, const char *prompt,
                           ZentoroFont font, int32_t flags);

    /* The kit's state changed: call `zentoro_view_update` soon to learn what to paint again. */
    void (*requestRedraw)(void *context);
    /* Puts `text` on the clipboard. */
    void (*copyText)(void *context, const char *text);
} ZentoroHost;

/* What the kit offers the host. The host finds these with dlsym on a version library's handle;
 * they resolve through that library's dependency on the kit. A view is the pointer that the
 * library's `zentoro_make_root_view()` returned, carrying one reference that the host owns. */
int32_t zentoro_kit_interface_version(void);
void zentoro_view_attach(void *view, const ZentoroHost *host);
void zentoro_view_release(void *view);
void zentoro_view_set_size(void *view, double width, double height);
/* `dark` selects the dark palette; `accent` is the system's highlight colour. The host sends it again
 * when its fonts change: the kit then measures every text afresh. */
void zentoro_view_set_appearance(void *view, int32_t dark, const ZentoroColor *accent);
enum {
    ZENTORO_DAMAGE_NONE = 0,
    ZENTORO_DAMAGE_RECT = 1, /* only `*damaged` changed */
    ZENTORO_DAMAGE_WHOLE = 2
};
/* Brings state and layout up to date and says what changed on screen since the last call. */
int32_t zentoro_view_update(void *view, ZentoroRect *damaged);
/* Updates if needed, then draws what meets `clip`, the part of the view being painted (all of
 * it when null). */
void zentoro_view_render(void *view, const ZentoroRect *clip);
/* Seconds until the view wants `zentoro_view_update` again because something on it moves (0
 * when that is now), or a negative number when nothing moves. The host asks after each update
 * and keeps a display timer only while the answer is not negative. */
double zentoro_view_next_frame(void *view);

enum {
    ZENTORO_POINTER_DOWN = 0,
    ZENTORO_POINTER_MOVE = 1, /* with or without a button held */
    ZENTORO_POINTER_UP = 2,
    ZENTORO_POINTER_LEAVE = 3
};
enum { ZENTORO_MODIFIER_SHIFT = 1, ZENTORO_MODIFIER_CONTROL = 2, ZENTORO_MODIFIER_ALT = 4, ZENTORO_MODIFIER_META = 8 };
/* Set on the pointer events of a press of the secondary (right) button: a context menu. */
enum { ZENTORO_POINTER_SECONDARY = 16 };
/* Returns 1 when the kit used the event. `clickCount` counts quick successive presses. */
int32_t zentoro_view_pointer(void *view, int32_t kind, double x, double y, int32_t modifiers, int32_t clickCount);
int32_t zentoro_view_scroll(void *view, double x, double y, double dx, double dy);

enum {
    ZENTORO_KEY_OTHER = 0,
    ZENTORO_KEY_RETURN = 1,
    ZENTORO_KEY_ESCAPE = 2,
    ZENTORO_KEY_TAB = 3,
    ZENTORO_KEY_BACKSPACE = 4,
    ZENTORO_KEY_DELETE = 5,
    ZENTORO_KEY_LEFT = 6,
    ZENTORO_KEY_RIGHT = 7,
    ZENTORO_KEY_UP = 8,
    ZENTORO_KEY_DOWN = 9,
    ZENTORO_KEY_SPACE = 10
};
/* `text` is what the key types (may be empty). Returns 1 when the kit used the key. */
int32_t zentoro_view_key(void *view, int32_t key, const char *text, int32_t modifiers);

void zentoro_view_text_changed(void *view, int64_t identifier, const char *utf8);
void zentoro_view_text_submitted(void *view, int64_t identifier);
void zentoro_view_text_focus(void *view, int64_t identifier, int32_t focused);

/* Main-queue integration: the host watches this file descriptor for reading and, when it is
 * readable or a wake-up time has come, calls `zentoro_kit_service_main`. That runs the work
 * queued for the main thread (main-queue blocks, main-actor tasks) and the due timers of the
 * main run loop, and returns the seconds until the next timer, or a negative number when
 * there is none. Call it also after every other call into the kit. */
int32_t zentoro_kit_main_queue_fd(void);
double zentoro_kit_service_main(void);

/* Writes the hosted app's stored settings to disk now: the standard defaults and the suite
 * named `suite`. Foundation on Linux writes them only when asked; the kit writes each
 * @AppStorage change a moment after it by itself, and the host calls this now and then and
 * before every orderly end for what the app keeps in UserDefaults directly. */
void zentoro_kit_save_settings(const char *suite);

#ifdef __cplusplus
}
#endif

#endif
