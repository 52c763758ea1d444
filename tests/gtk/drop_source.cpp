#include "tests/gtk/drop_source.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>

#include <cctype>
#include <chrono>
#include <thread>

static constexpr i32 ANSWER_SECONDS = 15;

// One drag: its own connection, so that nobody else takes its answers.
struct Drag {
    Display *display;
    Window source;
    Window target;
    std::string list;  // what is dropped
    Atom list_type;
};

static Atom atom(const Drag &drag, const char *name) {
    return XInternAtom(drag.display, name, False);
}

// "file:///a%20b" lines, each with the line end that lists of this kind have.
static std::string uri_list(const std::vector<std::string> &paths) {
    const char *const digits = "0123456789ABCDEF";
    std::string list;
    for (const std::string &path : paths) {
        list += "file://";
        for (const char c : path) {
            auto byte = static_cast<unsigned char>(c);
            const bool plain =
                byte < 0x80 && (std::isalnum(byte) != 0 || std::string("/-_.~").find(c) != std::string::npos);
            if (plain) {
                list.push_back(c);
            } else {
                list += {'%', digits[byte >> 4], digits[byte & 15]};
            }
        }
        list += "\r\n";
    }
    return list;
}

static void send(const Drag &drag, const char *message, const long (&data)[4]) {
    XEvent event = {};
    event.xclient.type = ClientMessage;
    event.xclient.display = drag.display;
    event.xclient.window = drag.target;
    event.xclient.message_type = atom(drag, message);
    event.xclient.format = 32;
    event.xclient.data.l[0] = static_cast<long>(drag.source);
    for (i32 i = 0; i < 4; ++i) {
        event.xclient.data.l[i + 1] = data[i];
    }
    XSendEvent(drag.display, drag.target, False, NoEventMask, &event);
    XFlush(drag.display);
}

// Hands over what the target asks for.
static void serve(const Drag &drag, const XSelectionRequestEvent &request) {
    Atom property = request.property != 0 ? request.property : request.target;
    if (request.target == drag.list_type) {
        XChangeProperty(drag.display, request.requestor, property, request.target, 8, PropModeReplace,
                        reinterpret_cast<const unsigned char *>(drag.list.data()),
                        static_cast<int>(drag.list.size()));
    } else if (request.target == atom(drag, "TARGETS")) {
        XChangeProperty(drag.display, request.requestor, property, XA_ATOM, 32, PropModeReplace,
                        reinterpret_cast<const unsigned char *>(&drag.list_type), 1);
    } else {
        property = 0;
    }
    XEvent answer = {};
    answer.xselection.type = SelectionNotify;
    answer.xselection.requestor = request.requestor;
    answer.xselection.selection = request.selection;
    answer.xselection.target = request.target;
    answer.xselection.property = property;
    answer.xselection.time = request.time;
    XSendEvent(drag.display, request.requestor, False, NoEventMask, &answer);
    XFlush(drag.display);
}

// Waits for a message of the target and gives its second item; -1 when none comes.
static long wait_for(const Drag &drag, const char *message) {
    const Atom wanted = atom(drag, message);
    auto end = std::chrono::steady_clock::now() + std::chrono::seconds(ANSWER_SECONDS);
    while (std::chrono::steady_clock::now() < end) {
        if (XPending(drag.display) == 0) {
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
            continue;
        }
        XEvent event = {};
        XNextEvent(drag.display, &event);
        if (event.type == SelectionRequest) {
            serve(drag, event.xselectionrequest);
        } else if (event.type == ClientMessage && event.xclient.message_type == wanted) {
            return event.xclient.data.l[1];
        }
    }
    return -1;
}

static DropResult carry(const Drag &drag, i32 x, i32 y) {
    const long version = 5;
    const auto copy = static_cast<long>(atom(drag, "XdndActionCopy"));
    send(drag, "XdndEnter", {version << 24, static_cast<long>(drag.list_type), 0, 0});
    send(drag, "XdndPosition", {0, static_cast<long>(x) << 16 | y, CurrentTime, copy});
    const long status = wait_for(drag, "XdndStatus");
    if (status < 0) {
        return DROP_SILENCE;
    }
    if ((status & 1) == 0) {
        send(drag, "XdndLeave", {0, 0, 0, 0});
        return DROP_REFUSED;
    }
    send(drag, "XdndDrop", {0, CurrentTime, 0, 0});
    const long finished = wait_for(drag, "XdndFinished");
    return finished < 0 ? DROP_SILENCE : (finished & 1) != 0 ? DROP_DONE : DROP_IN_VAIN;
}

DropResult drop_files(u64 window, i32 x, i32 y, const std::vector<std::string> &paths) {
    Drag drag = {XOpenDisplay(nullptr), 0, window, uri_list(paths), 0};
    if (drag.display == nullptr) {
        return DROP_SILENCE;
    }
    drag.source = XCreateSimpleWindow(drag.display, DefaultRootWindow(drag.display), 0, 0, 1, 1, 0, 0, 0);
    drag.list_type = atom(drag, "text/uri-list");
    XSetSelectionOwner(drag.display, atom(drag, "XdndSelection"), drag.source, CurrentTime);
    const DropResult result = carry(drag, x, y);
    XCloseDisplay(drag.display);
    return result;
}
