#include "hosts/zkey/props_command.h"

#include <algorithm>

#include "hosts/zkey/help.h"
#include "hosts/zkey/pipe.h"
#include "hosts/zkey/plugin_door.h"
#include "hosts/zkey/properties.h"
#include "hosts/zkey/stored_props.h"
#include "hosts/zkey/text.h"

namespace zkey {
namespace {

struct Request {
    std::vector<std::pair<std::string, std::optional<std::string>>> props;
    bool store = false;
    bool forget = false;
    bool help = false;
};

Request Parse(const std::vector<std::string> &arguments) {
    Request r;
    for (const std::string &a : arguments) {
        if (a == "--store") {
            r.store = true;
        } else if (a == "--forget") {
            r.forget = true;
        } else if (a == "--help" || a == "-h") {
            r.help = true;
        } else if (a.starts_with('-')) {
            FailUsage("unknown option " + a + "; zkey props --help lists them");
        } else {
            const std::size_t equals = a.find('=');
            const std::string name = a.substr(0, equals);
            const ZPropertyInfo *p = FindProperty(name);
            r.props.emplace_back(p == nullptr ? name : p->pszName, std::nullopt);
            if (equals == std::string::npos) continue;
            r.props.back().second = a.substr(equals + 1);
            CheckProperty("props", name, *r.props.back().second);
        }
    }
    // A name that the keyer does not know can be a leftover to be forgotten.
    for (const auto &[name, value] : r.props) {
        if (FindProperty(name) == nullptr && !(r.forget && StoredProperty(name))) CheckProperty("props", name, "");
    }
    const auto has = [&](bool value) {
        return std::any_of(r.props.begin(), r.props.end(), [&](const auto &p) { return p.second.has_value() == value; });
    };
    if (r.store && r.forget) FailUsage("--store and --forget exclude each other");
    if (r.store && (!has(true) || has(false))) FailUsage("--store: give NAME=VALUE, as process.threads=4");
    if (r.forget && (!has(false) || has(true))) FailUsage("--forget: give the names of properties, without values");
    return r;
}

std::string Describe(const ZPropertyInfo &p, const std::string &value) {
    std::string out = std::string(p.pszName) + "=" + value + "\n    " + MeaningOf(p) + "\n    ";
    if (IsReadOnly(p)) return out + "can only be read\n";
    out += KindOf(p) + ", by default " + (p.pszDefault[0] == '\0' ? "empty" : p.pszDefault);
    if (const auto stored = StoredProperty(p.pszName)) {
        out += ", stored as " + (stored->empty() ? "empty" : *stored);
        // The library takes what it finds; nobody checked a line that was written by hand.
        try {
            CheckProperty("", p.pszName, *stored);
        } catch (const Failure &) {
            out += ", which does not suit it";
        }
    }
    return out + "\n";
}

std::string Change(const Request &r) {
    std::string out;
    for (const auto &[name, value] : r.props) {
        const ZPropertyInfo *p = FindProperty(name);
        if (p != nullptr && IsReadOnly(*p)) FailUsage("--forget: " + name + " can only be read");
        const bool was = StoreProperty(name, value);
        if (value) {
            out += name + "=" + *value + " is stored in " + StoredPlace() + "\n";
        } else {
            out += name + (was ? " is no longer stored\n" : " was not stored\n");
        }
    }
    return out;
}

std::string Show(const Request &r) {
    Keyer keyer;
    std::string out;
    for (const auto &[name, value] : r.props) {
        if (value) keyer.SetProp(name, *value);
        out += Describe(*FindProperty(name), keyer.Prop(name).value_or(""));
    }
    if (!r.props.empty()) return out;
    for (const ZPropertyInfo &p : kZProperties) out += Describe(p, keyer.Prop(p.pszName).value_or(""));
    for (const auto &[name, value] : keyer.Props()) {
        if (FindProperty(name) == nullptr) out += name + "=" + value + "\n    stored, but the keyer does not know it\n";
    }
    return out + "\nStored properties lie in " + StoredPlace() + "\n";
}

}    // namespace

ExitStatus RunPropsCommand(const std::vector<std::string> &arguments) {
    const Request r = Parse(arguments);
    const std::string text = r.help ? PropsHelp() : r.store || r.forget ? Change(r) : Show(r);
    PrintOut(text);
    return kExitDone;
}

}    // namespace zkey
