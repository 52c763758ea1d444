#include "tests/gtk/screen.h"

#include <X11/extensions/XTest.h>
#include <X11/keysym.h>
#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>

// A window may be gone by the time that it is asked about; such an answer is empty.
static int ignore_error(Display *, XErrorEvent *) {
    return 0;
}

static Display *screen() {
    static Display *opened = [] {
        XSetErrorHandler(ignore_error);
        return XOpenDisplay(nullptr);
    }();
    return opened;
}

static Atom atom(const char *name) {
    return XInternAtom(screen(), name, False);
}

static Window root() {
    return DefaultRootWindow(screen());
}

bool screen_available() {
    return screen() != nullptr;
}

i32 screen_width() {
    return DisplayWidth(screen(), DefaultScreen(screen()));
}

i32 screen_height() {
    return DisplayHeight(screen(), DefaultScreen(screen()));
}

// A property's items as the library gives them: 8-bit ones a byte each, 32-bit ones a long each.
struct Property {
    u64 count;
    std::string bytes;
};

static Property property_of(Window window, const char *name) {
    Atom type = 0;
    int format = 0;
    unsigned long count = 0;
    unsigned long rest = 0;
    unsigned char *data = nullptr;
    const long most = 1 << 16;
    Property property = {};
    if (XGetWindowProperty(screen(), window, atom(name), 0, most, False, AnyPropertyType, &type, &format,
                           &count, &rest, &data) != 0 ||
        data == nullptr) {
        return property;
    }
    const size_t item = format == 32 ? sizeof(long) : static_cast<size_t>(format) / 8;
    property.count = count;
    property.bytes.assign(reinterpret_cast<const char *>(data), count * item);
    XFree(data);
    return property;
}

static u64 property_number(const Property &property, u64 index) {
    unsigned long value = 0;
    if (index < property.count && property.bytes.size() == property.count * sizeof value) {
        property.bytes.copy(reinterpret_cast<char *>(&value), sizeof value, index * sizeof value);
    }
    return value;
}

std::vector<u64> screen_windows(i32 process) {
    std::vector<u64> windows;
    const Property list = property_of(root(), "_NET_CLIENT_LIST");
    for (u64 i = 0; i < list.count; ++i) {
        const u64 window = property_number(list, i);
        if (property_number(property_of(window, "_NET_WM_PID"), 0) == static_cast<u64>(process)) {
            windows.push_back(window);
        }
    }
    return windows;
}

std::string screen_title(u64 window) {
    return property_of(window, "_NET_WM_NAME").bytes;
}

ScreenBox screen_window_box(u64 window) {
    XWindowAttributes attributes = {};
    int x = 0;
    int y = 0;
    Window child = 0;
    if (XGetWindowAttributes(screen(), window, &attributes) == 0 ||
        XTranslateCoordinates(screen(), window, root(), 0, 0, &x, &y, &child) == 0) {
        return {};
    }
    return {x, y, attributes.width, attributes.height};
}

void screen_close_window(u64 window) {
    XEvent event = {};
    event.xclient.type = ClientMessage;
    event.xclient.window = window;
    event.xclient.message_type = atom("_NET_CLOSE_WINDOW");
    event.xclient.format = 32;
    event.xclient.data.l[0] = CurrentTime;
    event.xclient.data.l[1] = 2;  // asked for by the user
    XSendEvent(screen(), root(), False, SubstructureNotifyMask | SubstructureRedirectMask, &event);
    XFlush(screen());
}

void screen_move_resize(u64 window, const ScreenBox &box) {
    XMoveResizeWindow(screen(), window, box.x, box.y, static_cast<u32>(box.width),
                      static_cast<u32>(box.height));
    XFlush(screen());
}

static KeySym modifier_of(const std::string &name) {
    return name == "alt" ? XK_Alt_L : name == "ctrl" ? XK_Control_L : XK_Shift_L;
}

static void press(KeySym key, Bool down) {
    XTestFakeKeyEvent(screen(), XKeysymToKeycode(screen(), key), down, CurrentTime);
}

void screen_key(const std::string &key) {
    std::string rest = key;
    std::vector<KeySym> held;
    for (size_t plus = rest.find('+'); plus != std::string::npos; plus = rest.find('+')) {
        held.push_back(modifier_of(rest.substr(0, plus)));
        rest = rest.substr(plus + 1);
    }
    const KeySym symbol = XStringToKeysym(rest.c_str());
    for (const KeySym modifier : held) {
        press(modifier, True);
    }
    press(symbol, True);
    press(symbol, False);
    for (size_t i = held.size(); i > 0; --i) {
        press(held[i - 1], False);
    }
    XSync(screen(), False);
}

void screen_pointer(i32 x, i32 y) {
    XTestFakeMotionEvent(screen(), -1, x, y, CurrentTime);
    XSync(screen(), False);
}

static void press_button(u32 button) {
    XTestFakeButtonEvent(screen(), button, True, CurrentTime);
    XTestFakeButtonEvent(screen(), button, False, CurrentTime);
    XSync(screen(), False);
}

void screen_click(i32 x, i32 y, u32 button) {
    screen_pointer(x, y);
    press_button(button);
}

void screen_drag(i32 from_x, i32 from_y, i32 to_x, i32 to_y) {
    const i32 steps = 10;
    screen_pointer(from_x, from_y);
    XTestFakeButtonEvent(screen(), 1, True, CurrentTime);
    for (i32 i = 1; i <= steps; ++i) {
        screen_pointer(from_x + (to_x - from_x) * i / steps, from_y + (to_y - from_y) * i / steps);
    }
    XTestFakeButtonEvent(screen(), 1, False, CurrentTime);
    XSync(screen(), False);
}

void screen_wheel(i32 x, i32 y, i32 steps) {
    screen_pointer(x, y);
    for (i32 i = 0; i < (steps < 0 ? -steps : steps); ++i) {
        press_button(steps < 0 ? 4 : 5);
    }
}

ScreenPicture screen_grab(const ScreenBox &box) {
    XImage *image = XGetImage(screen(), root(), box.x, box.y, static_cast<u32>(box.width),
                              static_cast<u32>(box.height), AllPlanes, ZPixmap);
    if (image == nullptr) {
        return {};
    }
    ScreenPicture picture = {box.width, box.height, {}};
    for (i32 y = 0; y < box.height; ++y) {
        for (i32 x = 0; x < box.width; ++x) {
            picture.pixels.push_back(static_cast<u32>(XGetPixel(image, x, y)) & 0xFFFFFFU);
        }
    }
    XDestroyImage(image);
    return picture;
}
