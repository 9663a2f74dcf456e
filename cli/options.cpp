#include "cli/options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <map>
#include <utility>

#include "cli/help.h"
#include "cli/text_input.h"
#include "cli/unknown_option.h"

namespace quorvane::cli {

namespace {

// Values as they stand on the command line.
struct Raw {
    std::string server, from, replyTo, messageId, passwordFile;
    std::vector<std::string> to, cc, bcc, attach, inlined, headers;
    std::string text, textFile, html, htmlFile, alternative;
    bool noImport = false;
    std::string priority = "normal";
    std::string encoding = "default";
};

const std::map<std::string, MailEncoding> kEncodings = {{"default", MailEncodingDefault},
                                                        {"7bit", MailEncoding7Bit},
                                                        {"8bit", MailEncoding8Bit},
                                                        {"qp", MailEncodingQuotedPrintable},
                                                        {"base64", MailEncodingBase64}};
const std::map<std::string, MailPriority> kPriorities = {
    {"high", MailPriorityHigh}, {"normal", MailPriorityNormal}, {"low", MailPriorityLow}};

constexpr std::string_view kStandardInput = "-";

// Checks that leave the help as it is.
CLI::Validator Between(int lowest, int highest) {
    return CLI::Range(lowest, highest).description("");
}
// Takes zeros off the front of a number, which the parser would take for the mark of octal digits.
CLI::Validator Decimal() {
    return CLI::Validator(
        [](std::string& text) {
            const auto digits = text.find_first_not_of('0');
            if (digits != 0 && digits != text.npos) text.erase(0, digits);
            return std::string();
        },
        "");
}
template <typename Value>
CLI::Validator OneOf(const std::map<std::string, Value>& words) {
    return CLI::IsMember(&words).description("");
}

template <typename Value>
CLI::Option* AddValue(CLI::App& app, const char* name, Value& value, const char* type,
                      const char* help) {
    return app.add_option(name, value, help)->type_name(type);
}

// An option that may be given several times, each time with one value.
void AddList(CLI::App& app, const char* name, std::vector<std::string>& values, const char* type,
             const char* help) {
    AddValue(app, name, values, type, help)->allow_extra_args(false);
}

void DefineServer(CLI::App& app, Options& options, Raw& raw) {
    app.option_defaults()->group("Server");
    AddValue(app, "--server", raw.server, "HOST[:PORT]", "Mail server to send through, port 25");
    auto* direct =
        app.add_flag("--direct", options.direct, "Deliver to the recipients' own servers instead");
    auto* user = AddValue(app, "--user", options.user, "NAME", "Account name for the server");
    auto* password = AddValue(app, "--password-file", raw.passwordFile, "FILE",
                              "File with the password in its first line, readable by you alone");
    user->needs(password);
    password->needs(user);
    app.add_flag("--spa", options.spa, "Log in with NTLM when the server offers it")->needs(user);
    app.add_flag("--ssl", options.ssl,
                 "Encrypt the connection, from the start or with STARTTLS, when the server can");
    AddValue(app, "--timeout", options.timeout, "SECONDS", "Time to wait for each reply: 30")
        ->transform(Decimal())
        ->check(Between(1, 86400));
    AddValue(app, "--attempts", options.attempts, "N", "How often to try to connect: 2")
        ->transform(Decimal())
        ->check(Between(1, 1000));
    AddValue(app, "--helo", options.helo, "NAME", "Name to introduce this computer by");
    for (const char* ofServer :
         {"--server", "--user", "--spa", "--ssl", "--timeout", "--attempts"}) {
        direct->excludes(app.get_option(ofServer));
    }
}

void DefineHeader(CLI::App& app, Options& options, Raw& raw) {
    app.option_defaults()->group("Addresses and header");
    AddValue(app, "--from", raw.from, "ADDRESS", "Sender, as user@host or 'Name <user@host>'");
    AddList(app, "--to", raw.to, "ADDRESS", "Recipient *");
    AddList(app, "--cc", raw.cc, "ADDRESS", "Recipient of a copy *");
    AddList(app, "--bcc", raw.bcc, "ADDRESS", "Recipient whom the others don't see *");
    AddValue(app, "--reply-to", raw.replyTo, "ADDRESS", "Where replies go");
    AddValue(app, "--subject", options.subject, "TEXT", "Subject");
    AddList(app, "--header", raw.headers, "'NAME: VALUE'", "Further header field *");
    AddValue(app, "--priority", raw.priority, "LEVEL", "high, normal or low")
        ->check(OneOf(kPriorities));
    app.add_flag("--read-receipt", options.readReceipt, "Ask for a receipt when it is read");
    AddValue(app, "--message-id", raw.messageId, "ID", "Message identifier of your own");
}

void DefineContent(CLI::App& app, Options& options, Raw& raw) {
    app.option_defaults()->group("Content, in UTF-8");
    auto* text = AddValue(app, "--text", raw.text, "TEXT", "Plain text; - reads standard input");
    auto* textFile = AddValue(app, "--text-file", raw.textFile, "FILE", "The same from a file");
    auto* html = AddValue(app, "--html", raw.html, "TEXT", "HTML; plain text goes beside it");
    auto* htmlFile = AddValue(app, "--html-file", raw.htmlFile, "FILE",
                              "HTML of a file, with the pictures that it shows");
    app.add_flag("--no-import", raw.noImport, "Send that file as it is; --inline does so too");
    AddValue(app, "--alt", raw.alternative, "TEXT", "Plain text to go beside the body");
    auto* bodyFile = AddValue(app, "--body-file", options.bodyFile, "FILE",
                              "Body to send byte for byte; HTML when named .html or .htm");
    text->excludes(textFile);
    html->excludes(htmlFile);
    for (auto* other : {text, textFile, html, htmlFile}) bodyFile->excludes(other);
    AddValue(app, "--charset", options.charset, "NAME", "Character set of the body");
    AddValue(app, "--alt-charset", options.alternativeCharset, "NAME",
             "Character set of the text beside it");
    AddValue(app, "--encoding", raw.encoding, "NAME", "default, 7bit, 8bit, qp or base64")
        ->check(OneOf(kEncodings));
    AddList(app, "--attach", raw.attach, "FILE[,name=N][,type=T]", "File to attach *");
    AddList(app, "--inline", raw.inlined, "FILE,cid=ID", "File that the HTML shows as cid:ID *");
}

void DefineSending(CLI::App& app, Options& options) {
    app.option_defaults()->group("Sending");
    AddValue(app, "--count", options.count, "N", "Send the message N times")
        ->transform(Decimal())
        ->check(Between(1, 1000000));
    auto* async = app.add_flag("--async", options.async, "Send through the queue; Ctrl-C cancels");
    AddValue(app, "--threads", options.threads, "N", "Messages of the queue in flight at a time: 5")
        ->transform(Decimal())
        ->check(Between(1, 1000))
        ->needs(async);
    app.add_flag("--json", options.json, "Print each outcome as a line of JSON");
    app.add_flag("--quiet", options.quiet, "Print nothing when all is sent");
    app.add_flag("--verbose", options.verbose, "Tell each step and its time on standard error");
    app.add_flag("--dry-run", options.dryRun,
                 "Send nothing; print envelope and message as a server would get them");
    app.set_help_flag("--help", "Show the options that most sends need");
    app.set_help_all_flag("--help-all", "Show all options");
    app.set_version_flag("--version", "quorvane-send " QUORVANE_VERSION, "Show the version");
}

// The lists as they were given: the parser takes a first "{}" for an empty list.
void TakeLists(const CLI::App& app, Raw& raw) {
    const std::pair<const char*, std::vector<std::string>*> lists[] = {
        {"--to", &raw.to},         {"--cc", &raw.cc},          {"--bcc", &raw.bcc},
        {"--attach", &raw.attach}, {"--inline", &raw.inlined}, {"--header", &raw.headers}};
    for (const auto& [name, values] : lists) *values = app.get_option(name)->results();
}

// An empty value comes from a variable that isn't set, and would count as none.
void RequireValues(const CLI::App& app) {
    for (const char* name :
         {"--user", "--password-file", "--reply-to", "--text-file", "--html-file", "--body-file"}) {
        const CLI::Option* const option = app.get_option(name);
        if (option->count() > 0 && option->results().front().empty()) {
            throw UsageError(std::string(name) + " has an empty value.");
        }
    }
}

// Takes '--name=value' apart, which the parser would misread when the value is empty.
std::vector<std::string> SeparateValues(const CLI::App& app,
                                        const std::vector<std::string>& arguments) {
    std::vector<std::string> separated;
    bool isValue = false;
    for (const std::string& argument : arguments) {
        const auto equals = isValue ? argument.npos : argument.find('=');
        const auto* option =
            isValue ? nullptr : app.get_option_no_throw(argument.substr(0, equals));
        const bool takesValue = option && option->get_items_expected_min() > 0;
        separated.push_back(takesValue ? argument.substr(0, equals) : argument);
        isValue = takesValue && equals == argument.npos;
        if (takesValue && !isValue) separated.push_back(argument.substr(equals + 1));
    }
    return separated;
}

// What the parser's complaint comes from: an argument that is no option, when there is one.
std::string Complaint(const CLI::App& app, const CLI::ParseError& error) {
    if (app.remaining_size() == 0) return error.what();  // doesn't count a "--" alone
    std::vector<std::string> names;
    for (const CLI::Option* option : app.get_options()) names.push_back(option->get_name());
    return AboutUnknown(app.remaining().front(), names);
}

std::vector<Address> ParseAddresses(const std::vector<std::string>& texts) {
    std::vector<Address> addresses;
    std::ranges::transform(texts, std::back_inserter(addresses), ParseAddress);
    return addresses;
}

std::vector<Header> ParseHeaders(const std::vector<std::string>& texts) {
    std::vector<Header> headers;
    for (const std::string& text : texts) {
        Header header = ParseHeader(text);
        const auto isSame = [&](const Header& other) { return other.name == header.name; };
        if (std::ranges::any_of(headers, isSame)) {
            throw UsageError("The header field " + header.name +
                             " is given twice; a message has one of each name.");
        }
        headers.push_back(std::move(header));
    }
    return headers;
}

void CollectFiles(const Raw& raw, Options& options) {
    for (const std::string& text : raw.inlined) {
        options.files.push_back(ParseFileArgument(text));
        if (options.files.back().contentId.empty()) {
            throw UsageError("'" + text + "' lacks the cid= by which the HTML refers to it.");
        }
    }
    for (const std::string& text : raw.attach) {
        options.files.push_back(ParseFileArgument(text));
        if (!options.files.back().contentId.empty()) {
            throw UsageError("'" + text + "' has a cid=; that is for --inline.");
        }
    }
    for (const FileArgument& file : options.files) RequireSendable(file.file);
}

// The text of an option, or of the file that its twin names.
std::string TextOf(const std::string& text, const std::string& file) {
    if (!file.empty()) return WithMailLineEnds(ReadTextFile(file));
    return WithMailLineEnds(text == kStandardInput ? ReadTextFile(text) : text);
}

// Pictures are found from where the file is; a pipe is nowhere.
bool HasPlace(const std::string& file) {
    return !file.empty() && file != kStandardInput &&
           std::filesystem::is_regular_file(PathOf(file));
}

bool IsHtmlName(const std::string& file) {
    return file.ends_with(".html") || file.ends_with(".htm");
}

void CollectBodies(const Raw& raw, Options& options) {
    const auto inputs = std::ranges::count_if(
        std::vector{raw.text, raw.textFile, raw.html, raw.htmlFile, raw.alternative},
        [](const std::string& value) { return value == kStandardInput; });
    if (inputs > 1) throw UsageError("Standard input can be read only once.");

    std::string text = TextOf(raw.text, raw.textFile);
    const std::string html = TextOf(raw.html, raw.htmlFile);
    options.alternative = TextOf(raw.alternative, {});
    options.html = !html.empty();
    options.body = options.html ? html : text;
    if (options.html && !text.empty()) {
        if (!options.alternative.empty()) {
            throw UsageError("--alt and --text both give the text beside the HTML.");
        }
        options.alternative = text;
    }
    if (options.html && !raw.noImport && raw.inlined.empty() && HasPlace(raw.htmlFile)) {
        RequireSameMeaning(raw.htmlFile);
        options.picturesOf = raw.htmlFile;
    }
    if (!options.bodyFile.empty()) {
        if (!std::filesystem::exists(PathOf(options.bodyFile))) {
            throw UsageError("Can't read the file " + options.bodyFile + ".");
        }
        RequireSendable(options.bodyFile);
        if (options.encoding != MailEncodingBase64) RequireNoNul(options.bodyFile);
        options.html = IsHtmlName(options.bodyFile);
    }
}

void Collect(const Raw& raw, Options& options) {
    if (raw.server.empty() && !options.direct && !options.dryRun) {
        throw UsageError("Name the mail server with --server HOST[:PORT], or say --direct.");
    }
    if (raw.from.empty()) throw UsageError("Name the sender with --from ADDRESS.");
    if (!raw.server.empty()) options.server = ParseServer(raw.server);
    options.from = ParseAddress(raw.from);
    options.to = ParseAddresses(raw.to);
    options.cc = ParseAddresses(raw.cc);
    options.bcc = ParseAddresses(raw.bcc);
    if (!raw.replyTo.empty()) options.replyTo = ParseAddress(raw.replyTo);
    options.messageId = ParseMessageId(raw.messageId);
    options.priority = kPriorities.at(raw.priority);
    options.encoding = kEncodings.at(raw.encoding);
    options.headers = ParseHeaders(raw.headers);
    CollectFiles(raw, options);
    CollectBodies(raw, options);
    if (!raw.passwordFile.empty()) options.password = ReadPassword(raw.passwordFile);
}

}  // namespace

Options ParseOptions(const std::vector<std::string>& arguments) {
    for (const std::string& argument : arguments) RequireText(argument, "An argument");
    Options options;
    Raw raw;
    CLI::App app{"Sends a message through a mail server.", "quorvane-send"};
    app.formatter(std::make_shared<Help>());
    app.allow_windows_style_options(false);
    DefineServer(app, options, raw);
    DefineHeader(app, options, raw);
    DefineContent(app, options, raw);
    DefineSending(app, options);

    std::vector<std::string> reversed = SeparateValues(app, arguments);
    std::ranges::reverse(reversed);  // the parser takes them from the end
    try {
        app.parse(reversed);
    } catch (const CLI::CallForHelp&) {
        options.information = app.help();
        return options;
    } catch (const CLI::CallForAllHelp&) {
        options.information = app.help("", CLI::AppFormatMode::All);
        return options;
    } catch (const CLI::CallForVersion&) {
        options.information = app.version() + "\n";
        return options;
    } catch (const CLI::ParseError& error) {
        throw UsageError(Complaint(app, error));
    }
    TakeLists(app, raw);
    RequireValues(app);
    Collect(raw, options);
    return options;
}

}  // namespace quorvane::cli
