#include "hosts/zrdde/Options.h"

#include "dde/DdeIds.h"
#include "siblings/driversupport/VariableReference.h"
#include "siblings/tools/Utf.h"

#include <algorithm>
#include <CLI/CLI.hpp>

namespace zr::ddeclient {
namespace {

constexpr std::size_t kMaxDdeText = 255;  // 16-bit units of any DDE name

// The words of the command line, before they are checked.
struct Words {
    std::string service;
    std::string linkService = Utf16ToUtf8(dde::kDefaultService);
    std::string topic;
    std::vector<std::string> items;
    std::string reference;
    double timeout = 0.0;  // s
    std::uint64_t count = 0;
};

std::string CheckName(const std::string& what, const std::string& text)
{
    if (text.empty()) {
        return "the " + what + " is empty";
    }
    if (!IsValidUtf8(text)) {
        return "the " + what + " is not UTF-8";
    }
    if (Utf8ToUtf16(text).Length() > kMaxDdeText) {
        return "the " + what + " is longer than " + std::to_string(kMaxDdeText) + " characters";
    }
    return {};
}

std::u16string Wide(const std::string& text)
{
    return std::u16string(Utf8ToUtf16(text).Text());
}

// Each returns what is wrong; empty when nothing is.
std::string TakeAdvise(const Words& words, Options& options)
{
    std::string problem = CheckName("service name", words.service);
    if (problem.empty()) {
        problem = CheckName("topic", words.topic);
    }
    options.service = Wide(words.service);
    options.topic = Wide(words.topic);
    for (const std::string& item : words.items) {
        if (problem.empty()) {
            problem = CheckName("item", item);
        }
        const ZRBasicString name = Utf8ToUtf16(item);
        const bool isKnown = std::any_of(options.items.begin(), options.items.end(), [&name](const auto& known) {
            return CompareNoCase(ZRBasicString(known), name) == 0;
        });
        if (!isKnown) {
            options.items.emplace_back(name.Text());
        }
    }
    return problem;
}

std::string TakeLink(const Words& words, Options& options)
{
    if (std::string problem = CheckName("service name", words.linkService); !problem.empty()) {
        return problem;
    }
    if (std::string problem = CheckName("reference", words.reference); !problem.empty()) {
        return problem;
    }
    ZRBasicString device;
    ZRBasicString variable;
    SplitDriverVariable(Utf8ToUtf16(words.reference), device, variable);
    if (device.IsEmpty() || variable.IsEmpty()) {
        return "'" + words.reference + "' is not DEVICE.VARIABLE";
    }
    if (words.reference.find_first_of("#@") != std::string::npos) {
        return "'" + words.reference + "': a link has no filter and no hour type, only DEVICE.VARIABLE";
    }
    if (std::max(device.Length(), variable.Length()) > dde::kMaxNameLength) {
        return "names of a link have at most " + std::to_string(dde::kMaxNameLength) + " characters";
    }
    options.service = Wide(words.linkService);
    options.device = std::u16string(device.Text());
    options.variable = std::u16string(variable.Text());
    return {};
}

CLI::App* AddAdvise(CLI::App& app, Words& words, Options& options)
{
    CLI::App* const advise = app.add_subcommand("advise",
                                                "Opens a conversation on SERVICE and TOPIC and a link on each ITEM, "
                                                "and prints each value that arrives: UTC time, "
                                                "item, value, separated by tabs.");
    advise->add_option("SERVICE", words.service, "name of the service, such as KESTRIX")->required();
    advise->add_option("TOPIC", words.topic, "name of the device")->required();
    advise->add_option("ITEM", words.items, "names of variables of the device")->required();
    advise
        ->add_option("--format", options.format,
                     "form of the values (default: xltable). xltable is exact: a double. Of the text form the server "
                     "sends only the first half, as its clients expect; what is missing is told")
        ->type_name("text|xltable")
        ->transform(CLI::CheckedTransformer(
            std::map<std::string, Format>{{"text", Format::Text}, {"xltable", Format::XlTable}}, CLI::ignore_case));
    advise->add_option("--count", words.count, "end after that many values of all items (default: on and on)")
        ->type_name("N")
        ->check(CLI::Range(std::uint64_t{1}, std::uint64_t{1000000000000}));
    advise
        ->add_option("--timeout", words.timeout,
                     "end after that time at the latest: with status 4 if fewer than N values came, or none")
        ->type_name("SECONDS")
        ->check(CLI::Range(0.001, 1000000000.0));
    advise->add_flag("--json", options.json, "print each value as one line of JSON");
    return advise;
}

CLI::App* AddLink(CLI::App& app, Words& words)
{
    CLI::App* const link = app.add_subcommand(
        "link",
        "Prints the text that links a spreadsheet's cell to a variable: first the form SERVICE|TOPIC!ITEM, then "
        "the form of a function.");
    link->add_option("DEVICE.VARIABLE", words.reference, "name of the device, a point, name of the variable")
        ->required();
    link->add_option("--service", words.linkService, "name of the service (default: " + words.linkService + ")")
        ->type_name("NAME");
    return link;
}

}  // namespace

ParsedOptions ParseOptions(int argc, char** argv)
{
    Options options;
    Words words;
    CLI::App app("Client of the publication of live values (DDE): prints them as they arrive.", "zrdde");
    app.allow_windows_style_options(false);  // one command line on every system, and paths that begin with a slash
    app.require_subcommand(1);
    app.footer(
        "Exit status: 0 done, 1 no such service, topic or item, 2 bad command line, 3 the server ended the "
        "conversation, 4 the time was over.");
    CLI::App* const advise = AddAdvise(app, words, options);
    CLI::App* const services =
        app.add_subcommand("services", "Lists the services that are registered now, one a line.");
    CLI::App* const link = AddLink(app, words);
    for (CLI::App* const command : {advise, services, link}) {
        command->footer(app.get_footer());
    }
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return {std::nullopt, app.exit(error) == 0 ? kDone : kBadCommand};
    }
    std::string problem;
    if (*advise) {
        options.command = Command::Advise;
        problem = TakeAdvise(words, options);
    } else if (*link) {
        options.command = Command::Link;
        problem = TakeLink(words, options);
    }
    if (!problem.empty()) {
        std::cerr << "zrdde: " << problem << '\n';
        return {std::nullopt, kBadCommand};
    }
    if (words.count > 0) {
        options.count = words.count;
    }
    if (words.timeout > 0.0) {
        options.timeout = std::chrono::milliseconds(static_cast<std::int64_t>(words.timeout * 1000.0));
    }
    return {options, kDone};
}

}  // namespace zr::ddeclient
