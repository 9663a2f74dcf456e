#include "tests/smtp/dialogue_case.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <stdexcept>

namespace quorvane::testing {
namespace {

std::string_view Trimmed(std::string_view line) {
    line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
    return line.substr(0, line.find_last_not_of(" \t\r") + 1);
}

// A value stands in quotes when it has escapes, blanks at its ends, or nothing in it.
std::string Value(std::string_view text) {
    return text.starts_with('"') ? TakeQuoted(text) : std::string(text);
}

std::vector<std::string> Words(std::string_view text) {
    std::vector<std::string> words;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(' '), text.size());
        words.emplace_back(text.substr(0, end));
        text = Trimmed(text.substr(end));
    }
    return words;
}

Delivery ParseDelivery(std::string_view name) {
    if (name == "whole") return Delivery::Whole;
    if (name == "line") return Delivery::ByLine;
    if (name == "byte") return Delivery::ByByte;
    throw std::invalid_argument("deliver whole, line or byte");
}

bool ReadMessage(std::string_view line, DialogueCase& result) {
    std::string_view rest = line;
    if (TakePrefix(rest, "from ")) {
        result.from = Value(rest);
    } else if (TakePrefix(rest, "to ")) {
        result.to.push_back(Value(rest));
    } else if (TakePrefix(rest, "cc ")) {
        result.cc.push_back(Value(rest));
    } else if (TakePrefix(rest, "bcc ")) {
        result.bcc.push_back(Value(rest));
    } else if (rest == "no recipients") {
        result.noRecipients = true;
    } else if (TakePrefix(rest, "body ")) {
        result.body = Value(rest);
    } else if (TakePrefix(rest, "composed size ")) {
        result.composedSize = static_cast<std::size_t>(TakeNumber(rest));
    } else {
        return false;
    }
    return true;
}

bool ReadSetting(std::string_view line, DialogueCase& result) {
    std::string_view rest = line;
    if (TakePrefix(rest, "server name ")) {
        result.server = Value(rest);
    } else if (TakePrefix(rest, "user ")) {
        result.user = Value(rest);
    } else if (TakePrefix(rest, "password ")) {
        result.password = Value(rest);
    } else if (TakePrefix(rest, "helo ")) {
        result.helo = Value(rest);
    } else if (TakePrefix(rest, "timeout ")) {
        result.timeout = TakeNumber(rest);
    } else if (TakePrefix(rest, "attempts ")) {
        result.attempts = TakeNumber(rest);
    } else if (TakePrefix(rest, "tls mode ")) {
        result.tls = TakeNumber(rest);
    } else if (rest == "spa allowed") {
        result.spa = true;
    } else if (TakePrefix(rest, "authentication verdict ")) {
        result.authVerdict = TakeNumber(rest);
    } else if (TakePrefix(rest, "deliver ")) {
        result.deliveries.clear();
        for (const std::string& name : Words(rest)) {
            result.deliveries.push_back(ParseDelivery(name));
        }
    } else {
        return false;
    }
    return true;
}

bool ReadExpectation(std::string_view line, DialogueCase& result) {
    std::string_view rest = line;
    if (rest == "progress any") {
        result.anyProgress = true;
    } else if (TakePrefix(rest, "progress")) {
        while (!rest.empty()) {
            result.progress.push_back(static_cast<unsigned>(TakeNumber(rest)));
        }
    } else if (rest == "slow") {
        result.slow = true;
        result.deliveries = {Delivery::Whole};
    } else if (TakePrefix(rest, "stop at ")) {
        result.stopAt = static_cast<unsigned>(TakeNumber(rest));
    } else if (TakePrefix(rest, "message holds ")) {
        result.wire.push_back(TakeQuoted(rest));
    } else if (TakePrefix(rest, "connections ")) {
        result.accepted = TakeNumber(rest);
    } else if (TakePrefix(rest, "takes at least ")) {
        result.leastDuration = TakeNumber(rest);
    } else {
        return false;
    }
    return true;
}

// connect, send, send-to ADDRESS..., close, wait or wait-for-end; then for the first three "=
// CODE", and the error text that must stand after the call, with `or` between those that may.
Call ParseCall(std::string_view line) {
    const std::size_t equals = line.find(" = ");
    const std::vector<std::string> words = Words(Trimmed(line.substr(0, equals)));
    const std::map<std::string, Call::Kind> kinds = {
        {"connect", Call::Kind::Connect},    {"send", Call::Kind::Send},
        {"send-to", Call::Kind::SendTo},     {"close", Call::Kind::Close},
        {"wait", Call::Kind::WaitForServer}, {"wait-for-end", Call::Kind::WaitForEnd}};
    const auto kind = words.empty() ? kinds.end() : kinds.find(words.front());
    if (kind == kinds.end()) {
        throw std::invalid_argument("an unknown call");
    }
    Call call{kind->second};
    call.recipients.assign(words.begin() + 1, words.end());
    if (equals != std::string_view::npos) {
        std::string_view rest = Trimmed(line.substr(equals + 3));
        if (call.kind != Call::Kind::Close) {
            call.code = TakeNumber(rest);
        }
        while (!rest.empty()) {
            call.texts.push_back(TakeQuoted(rest));
            TakePrefix(rest, "or ");
        }
    }
    return call;
}

bool Begins(const Step& step, std::string_view command) {
    if (command == "message") {
        return step.kind == Step::Kind::ExpectMessage;
    }
    return step.kind == Step::Kind::Expect && step.text.starts_with(command);
}

class CaseReader {
public:
    explicit CaseReader(std::vector<DialogueCase>& cases) : cases_(cases) {}

    void Read(const std::filesystem::path& path) {
        std::ifstream file(path);
        std::string text;
        for (int number = 1; std::getline(file, text); ++number) {
            const std::string place = path.filename().string() + ":" + std::to_string(number);
            const std::string_view line = Trimmed(text);
            if (line.empty() || line.starts_with('#')) {
                continue;
            }
            try {
                ReadLine(line, place);
            } catch (const std::invalid_argument& problem) {
                std::string what = place;
                what.append(": ").append(problem.what()).append(": ").append(text);
                throw std::runtime_error(what);
            }
        }
    }

private:
    void ReadLine(std::string_view line, const std::string& place) {
        if (TakePrefix(line, "case ")) {
            cases_.emplace_back();
            cases_.back().name = line;
            cases_.back().place = place;
            return;
        }
        if (cases_.empty()) {
            throw std::invalid_argument("a line before the first case");
        }
        DialogueCase& current = cases_.back();
        if (TakePrefix(line, "call ")) {
            current.calls.push_back(ParseCall(line));
        } else if (line == "next connection") {
            current.connections.emplace_back();
        } else if (TakePrefix(line, "as usual")) {
            AddUsual(line, script());
        } else if (!ReadMessage(line, current) && !ReadSetting(line, current) &&
                   !ReadExpectation(line, current) && !ParseStep(line, script())) {
            throw std::invalid_argument("what is this?");
        }
    }

    Script& script() {
        auto& connections = cases_.back().connections;
        if (connections.empty()) {
            connections.emplace_back();
        }
        return connections.back();
    }

    // "from COMMAND" and "until COMMAND" take a part of the first case's script.
    void AddUsual(std::string_view limits, Script& script) {
        const Script& usual = cases_.front().connections.front();
        const auto find = [&](const std::string& command) {
            const auto step = std::find_if(usual.begin(), usual.end(), [&](const Step& candidate) {
                return Begins(candidate, command);
            });
            return step != usual.end() ? step : throw std::invalid_argument("not in usual.txt");
        };
        auto first = usual.begin();
        auto last = usual.end();
        const std::vector<std::string> words = Words(limits);
        for (std::size_t i = 0; i + 1 < words.size(); i += 2) {
            (words[i] == "from" ? first : last) = find(words[i + 1]);
        }
        const std::vector<Step> steps(first, last);
        script.insert(script.end(), steps.begin(), steps.end());
    }

    std::vector<DialogueCase>& cases_;
};

}  // namespace

std::vector<DialogueCase> LoadDialogueCases(const std::string& folder) {
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().extension() == ".txt") {
            files.push_back(entry.path());
        }
    }
    // The usual dialogue first: the others refer to it.
    std::sort(files.begin(), files.end(), [](const auto& a, const auto& b) {
        return std::pair(a.stem() != "usual", a) < std::pair(b.stem() != "usual", b);
    });
    std::vector<DialogueCase> cases;
    CaseReader reader(cases);
    for (const auto& file : files) {
        reader.Read(file);
    }
    return cases;
}

}  // namespace quorvane::testing
