#include "options.h"

#include <cerrno>
#include <cstdlib>

namespace {

const OptionSpec* Long(const std::vector<OptionSpec>& specs, const std::string& name, std::string* error) {
    const OptionSpec* found = nullptr;
    int prefixes = 0;
    for (const OptionSpec& s : specs) {
        if (!s.name) continue;
        const std::string n = s.name;
        if (n == name) return &s;
        if (n.compare(0, name.size(), name) == 0) {
            if (!found || found->id != s.id) ++prefixes;
            found = &s;
        }
    }
    if (prefixes == 1) return found;
    *error = (prefixes ? "option '--" + name + "' is ambiguous" : "unrecognized option '--" + name + "'");
    return nullptr;
}

}  // namespace

bool ParseArgs(const std::vector<std::string>& args, const std::vector<OptionSpec>& specs,
               std::vector<ParsedOption>* options, std::vector<std::string>* operands, std::string* error) {
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        if (a == "--") {
            operands->insert(operands->end(), args.begin() + long(i) + 1, args.end());
            return true;
        }
        if (a.size() > 2 && a[0] == '-' && a[1] == '-') {
            const size_t eq = a.find('=');
            const std::string name = a.substr(2, eq == std::string::npos ? std::string::npos : eq - 2);
            const OptionSpec* s = Long(specs, name, error);
            if (!s) return false;
            ParsedOption o{s->id, std::string(), eq != std::string::npos};
            if (o.hasValue) o.value = a.substr(eq + 1);
            if (s->arg == OptionSpec::kNone && o.hasValue) {
                *error = "option '--" + std::string(s->name) + "' doesn't allow an argument";
                return false;
            }
            if (s->arg == OptionSpec::kRequired && !o.hasValue) {
                if (++i >= args.size()) {
                    *error = "option '--" + std::string(s->name) + "' requires an argument";
                    return false;
                }
                o.value = args[i];
                o.hasValue = true;
            }
            options->push_back(o);
            continue;
        }
        if (a.size() < 2 || a[0] != '-') {
            operands->push_back(a);
            continue;
        }
        for (size_t k = 1; k < a.size(); ++k) {
            const OptionSpec* s = nullptr;
            for (const OptionSpec& c : specs)
                if (c.letter == a[k]) s = &c;
            if (!s) {
                *error = std::string("invalid option -- '") + a[k] + "'";
                return false;
            }
            ParsedOption o{s->id, std::string(), false};
            if (s->arg != OptionSpec::kNone) {
                o.value = a.substr(k + 1);
                o.hasValue = !o.value.empty();
                if (!o.hasValue && s->arg == OptionSpec::kRequired) {
                    if (++i >= args.size()) {
                        *error = std::string("option requires an argument -- '") + a[k] + "'";
                        return false;
                    }
                    o.value = args[i];
                    o.hasValue = true;
                }
                options->push_back(o);
                break;
            }
            options->push_back(o);
        }
    }
    return true;
}

bool ParseCount(const std::string& text, long long* value) {
    if (text.empty() || text.find_first_not_of("0123456789") != std::string::npos) return false;
    errno = 0;
    *value = std::strtoll(text.c_str(), nullptr, 10);
    if (errno == ERANGE) *value = (1LL << 62);
    return true;
}
