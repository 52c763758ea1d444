#include "tests/gtk/accessible.h"

#include <gio/gio.h>

#include <memory>

static constexpr i32 ANSWER_MS = 5000;
static const char *const THING = "org.a11y.atspi.Accessible";

// The bus of the screen readers, whose address the session's bus tells. Null without one.
static GDBusConnection *accessibility_bus() {
    static GDBusConnection *bus = [] {
        GDBusConnection *opened = nullptr;
        g_autoptr(GDBusConnection) session = g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr);
        if (session == nullptr) {
            return opened;
        }
        g_autoptr(GVariant) answer = g_dbus_connection_call_sync(
            session, "org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress", nullptr,
            G_VARIANT_TYPE("(s)"), G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr);
        if (answer != nullptr) {
            const char *address = nullptr;
            g_variant_get(answer, "(&s)", &address);
            const auto flags =
                static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                  G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
            opened = g_dbus_connection_new_for_address_sync(address, flags, nullptr, nullptr, nullptr);
        }
        return opened;
    }();
    return bus;
}

struct AnswerFreed {
    void operator()(GVariant *answer) const { g_variant_unref(answer); }
};

// Owned; null for none in time or one of another form.
using Answer = std::unique_ptr<GVariant, AnswerFreed>;

static Answer call(const Accessible &thing, const char *interface, const char *method, GVariant *arguments,
                   const char *answer_form) {
    if (thing.path.empty() || accessibility_bus() == nullptr) {
        if (arguments != nullptr) {
            g_variant_unref(g_variant_ref_sink(arguments));
        }
        return nullptr;
    }
    return Answer(g_dbus_connection_call_sync(accessibility_bus(), thing.bus.c_str(), thing.path.c_str(),
                                              interface, method, arguments, G_VARIANT_TYPE(answer_form),
                                              G_DBUS_CALL_FLAGS_NONE, ANSWER_MS, nullptr, nullptr));
}

static std::string text_answer(const Answer &answer) {
    const char *bytes = "";
    if (answer != nullptr) {
        g_variant_get(answer.get(), "(&s)", &bytes);
    }
    return bytes;
}

static std::string text_property(const Accessible &thing, const char *name) {
    const Answer answer =
        call(thing, "org.freedesktop.DBus.Properties", "Get", g_variant_new("(ss)", THING, name), "(v)");
    if (answer == nullptr) {
        return "";
    }
    g_autoptr(GVariant) value = nullptr;
    g_variant_get(answer.get(), "(v)", &value);
    return g_variant_is_of_type(value, G_VARIANT_TYPE_STRING) != 0 ? g_variant_get_string(value, nullptr)
                                                                   : "";
}

static i32 process_of(const std::string &bus_name) {
    const Accessible bus = {"org.freedesktop.DBus", "/org/freedesktop/DBus"};
    const Answer answer = call(bus, "org.freedesktop.DBus", "GetConnectionUnixProcessID",
                               g_variant_new("(s)", bus_name.c_str()), "(u)");
    u32 process = 0;
    if (answer != nullptr) {
        g_variant_get(answer.get(), "(u)", &process);
    }
    return static_cast<i32>(process);
}

Accessible accessible_program(i32 process) {
    const Accessible desktop = {"org.a11y.atspi.Registry", "/org/a11y/atspi/accessible/root"};
    for (const Accessible &program : accessible_children(desktop)) {
        if (process_of(program.bus) == process) {
            return program;
        }
    }
    return {};
}

bool accessible_exists(const Accessible &thing) {
    return !thing.path.empty();
}

std::vector<Accessible> accessible_children(const Accessible &thing) {
    std::vector<Accessible> children;
    const Answer answer = call(thing, THING, "GetChildren", nullptr, "(a(so))");
    if (answer == nullptr) {
        return children;
    }
    g_autoptr(GVariantIter) items = nullptr;
    g_variant_get(answer.get(), "(a(so))", &items);
    const char *bus = nullptr;
    const char *path = nullptr;
    while (g_variant_iter_next(items, "(&s&o)", &bus, &path) != 0) {
        if (std::string(path) != "/org/a11y/atspi/null") {
            children.push_back({bus, path});
        }
    }
    return children;
}

std::string accessible_name(const Accessible &thing) {
    return text_property(thing, "Name");
}

std::string accessible_description(const Accessible &thing) {
    return text_property(thing, "Description");
}

std::string accessible_role(const Accessible &thing) {
    return text_answer(call(thing, THING, "GetRoleName", nullptr, "(s)"));
}

bool accessible_has_state(const Accessible &thing, AccessibleState state) {
    const Answer answer = call(thing, THING, "GetState", nullptr, "(au)");
    if (answer == nullptr) {
        return false;
    }
    g_autoptr(GVariantIter) words = nullptr;
    g_variant_get(answer.get(), "(au)", &words);
    u64 states = 0;
    u32 word = 0;
    for (u32 shift = 0; g_variant_iter_next(words, "u", &word) != 0; shift += 32) {
        states |= static_cast<u64>(word) << shift;
    }
    return ((states >> static_cast<u32>(state)) & 1U) != 0;
}

// The numbers that the bus has for the two corners that places are told from.
static constexpr u32 FROM_SCREEN = 0;
static constexpr u32 FROM_WINDOW = 1;

static ScreenBox box_from(const Accessible &thing, u32 corner) {
    ScreenBox box = {};
    const Answer answer =
        call(thing, "org.a11y.atspi.Component", "GetExtents", g_variant_new("(u)", corner), "((iiii))");
    if (answer != nullptr) {
        g_variant_get(answer.get(), "((iiii))", &box.x, &box.y, &box.width, &box.height);
    }
    return box;
}

ScreenBox accessible_box(const Accessible &thing) {
    return box_from(thing, FROM_SCREEN);
}

ScreenBox accessible_box_in_window(const Accessible &thing) {
    return box_from(thing, FROM_WINDOW);
}

std::string accessible_text(const Accessible &thing) {
    return text_answer(call(thing, "org.a11y.atspi.Text", "GetText", g_variant_new("(ii)", 0, -1), "(s)"));
}

ScreenBox accessible_character_box(const Accessible &thing, i32 index) {
    ScreenBox box = {};
    const Answer answer = call(thing, "org.a11y.atspi.Text", "GetCharacterExtents",
                               g_variant_new("(iu)", index, FROM_SCREEN), "(iiii)");
    if (answer != nullptr) {
        g_variant_get(answer.get(), "(iiii)", &box.x, &box.y, &box.width, &box.height);
    }
    return box;
}

static bool truth_answer(const Answer &answer) {
    gboolean done = 0;
    if (answer != nullptr) {
        g_variant_get(answer.get(), "(b)", &done);
    }
    return done != 0;
}

bool accessible_set_text(const Accessible &thing, const std::string &text) {
    return truth_answer(call(thing, "org.a11y.atspi.EditableText", "SetTextContents",
                             g_variant_new("(s)", text.c_str()), "(b)"));
}

bool accessible_activate(const Accessible &thing) {
    return truth_answer(call(thing, "org.a11y.atspi.Action", "DoAction", g_variant_new("(i)", 0), "(b)"));
}

static void find_below(const Accessible &root, const std::string &role, const std::string &name, size_t most,
                       std::vector<Accessible> *found) {
    const bool fits =
        (role.empty() || accessible_role(root) == role) && (name == "*" || accessible_name(root) == name);
    if (fits && accessible_has_state(root, STATE_SHOWING)) {
        found->push_back(root);
    }
    if (found->size() >= most) {
        return;
    }
    for (const Accessible &child : accessible_children(root)) {
        find_below(child, role, name, most, found);
        if (found->size() >= most) {
            return;
        }
    }
}

Accessible accessible_find(const Accessible &root, const std::string &role, const std::string &name) {
    std::vector<Accessible> found;
    find_below(root, role, name, 1, &found);
    return found.empty() ? Accessible{} : found[0];
}

std::vector<Accessible> accessible_find_all(const Accessible &root, const std::string &role) {
    std::vector<Accessible> found;
    find_below(root, role, "*", SIZE_MAX, &found);
    return found;
}

static void describe(const Accessible &thing, i32 depth, std::string *out) {
    out->append(static_cast<size_t>(depth) * 2, ' ');
    *out += accessible_role(thing) + " \"" + accessible_name(thing) + "\"";
    *out += accessible_has_state(thing, STATE_SENSITIVE) ? "" : " greyed";
    *out += accessible_has_state(thing, STATE_SHOWING) ? "\n" : " hidden\n";
    for (const Accessible &child : accessible_children(thing)) {
        describe(child, depth + 1, out);
    }
}

std::string accessible_tree(const Accessible &root) {
    std::string out;
    describe(root, 0, &out);
    return out;
}
