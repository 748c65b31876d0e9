#include "Arguments.h"

#include <algorithm>

#include "Display.h"

namespace {

using mensor::exact::ePack, mensor::exact::packNamed;

void addPacks(const std::string& names, std::vector<ePack>& packs) {
    for (std::size_t begin = 0; begin <= names.size();) {
        const std::size_t end = std::min(names.find(',', begin), names.size());
        const std::string name = names.substr(begin, end - begin);
        const auto pack = packNamed(name);
        if (!pack) {
            throw CUsageError("unknown pack " + quoted(name) + "; see mensor list packs");
        }
        packs.push_back(*pack);
        begin = end + 1;
    }
}

mensor::codes::eSystem systemOf(const std::string& name) {
    const auto system = mensor::codes::systemNamed(name);
    if (!system) {
        throw CUsageError("unknown system of codes " + quoted(name) +
                          "; the systems are unece, opcua, ucum, senml and opentelemetry");
    }
    return *system;
}

bool isPlainOption(const std::string& option) {
    for (const char* const known :
         {"--ucum", "--json", "--quiet", "--differences", "--dimensionless", "--strict", "--kinds",
          "--library", "--help", "--version"}) {
        if (option == known) {
            return true;
        }
    }
    return false;
}

// Returns whether a word is an option. "-40 °F" and "-" are operands.
bool isOption(const std::string& word) {
    return word.size() > 1 && word[0] == '-' && word[1] != '.' && (word[1] < '0' || word[1] > '9');
}

// Returns how to write several words as one: "; in quotation marks: "5 km"".
std::string asOneWord(const std::vector<std::string>& words) {
    std::string all;
    for (const std::string& word : words) {
        all += (all.empty() ? "" : " ") + word;
    }
    return all.empty() ? "" : "; write it in quotation marks: " + quoted(all);
}

void requireOperands(const CArguments& arguments) {
    const auto& operands = arguments.Operands;
    if (arguments.Command == "convert") {
        if (operands.size() < 2) {
            throw CUsageError("convert takes a value, or \"-\", and the units to convert it to");
        }
    } else if (arguments.Command == "explain") {
        if (operands.size() != 1) {
            throw CUsageError("explain takes one unit" + asOneWord(operands));
        }
    } else if (arguments.Command == "audit") {
        if (operands.size() != 1) {
            throw CUsageError("audit takes one file, or \"-\"");
        }
    } else if (arguments.Command == "code") {
        if (operands.size() != 1) {
            throw CUsageError("code takes one unit" + asOneWord(operands));
        }
    } else if (arguments.Command == "list") {
        const bool isKnown = operands.empty() || (operands.size() == 1 && operands[0] == "packs") ||
                             (operands.size() == 2 && operands[0] == "compatible");
        if (!isKnown) {
            throw CUsageError("list takes nothing, \"packs\", or \"compatible\" and a unit");
        }
    } else {
        throw CUsageError(arguments.Command.empty()
                              ? std::string("a command is missing")
                              : "unknown command " + quoted(arguments.Command) +
                                    "; the commands are convert, explain, list, audit and code");
    }
}

}  // namespace

CArguments readArguments(const std::vector<std::string>& words) {
    CArguments arguments;
    std::vector<std::string> operands;
    bool areOptionsOver = false;
    for (auto word = words.begin(); word != words.end(); ++word) {
        if (areOptionsOver || !isOption(*word)) {
            operands.push_back(*word);
            continue;
        }
        const std::string option = word->substr(0, word->find('='));
        const bool hasValue = option.size() < word->size();
        const auto value = [&]() -> std::string {
            if (hasValue) {
                return word->substr(option.size() + 1);
            }
            if (++word == words.end()) {
                throw CUsageError(option + " needs a value");
            }
            return *word;
        };
        if (option == "--pack") {
            addPacks(value(), arguments.Packs);
            continue;
        }
        if (option == "--units") {
            arguments.UnitFiles.push_back(value());
            continue;
        }
        if (option == "--from") {
            arguments.From = systemOf(value());
            continue;
        }
        if (option == "--to") {
            arguments.To = systemOf(value());
            continue;
        }
        if (hasValue) {
            throw CUsageError(isPlainOption(option)
                                  ? quoted(option) + " takes no value: " + quoted(*word)
                                  : "unknown option " + quoted(*word));
        }
        if (option == "--") {
            areOptionsOver = true;
        } else if (option == "--ucum") {
            arguments.From = mensor::codes::eSystem::UCUM;
        } else if (option == "--json") {
            arguments.Json = true;
        } else if (option == "--quiet") {
            arguments.Quiet = true;
        } else if (option == "--differences") {
            arguments.Reading.Differences = true;
        } else if (option == "--dimensionless") {
            arguments.Reading.Dimensionless = true;
        } else if (option == "--strict") {
            arguments.Reading.Strict = true;
        } else if (option == "--kinds") {
            arguments.Kinds = true;
        } else if (option == "--library") {
            arguments.Library = true;
        } else if (option == "--help" || option == "-h") {
            arguments.Help = true;
        } else if (option == "--version") {
            arguments.Version = true;
        } else {
            throw CUsageError("unknown option " + quoted(*word));
        }
    }
    if (arguments.Help || arguments.Version) {
        return arguments;
    }
    if (!operands.empty()) {
        arguments.Command = operands.front();
        arguments.Operands.assign(operands.begin() + 1, operands.end());
    }
    requireOperands(arguments);
    return arguments;
}

const char* help() {
    return "usage: mensor convert [OPTION]... \"VALUE UNIT\" UNIT...   convert a value\n"
           "       mensor convert [OPTION]... - UNIT...              convert the lines of a pipe\n"
           "       mensor explain [OPTION]... UNIT                   show what a text means, and "
           "why\n"
           "       mensor list [OPTION]... [packs | compatible UNIT] list units or packs\n"
           "       mensor audit [OPTION]... FILE                     check a list of units\n"
           "       mensor code [OPTION]... UNIT                      show the codes of a unit\n"
           "\n"
           "  --pack NAME[,NAME]...  add packs of units; see mensor list packs\n"
           "  --units FILE           define units: lines of \"name = number unit\"\n"
           "  --from SYSTEM          read codes: unece, opcua, ucum, senml, opentelemetry\n"
           "  --to SYSTEM            write codes; with convert, the target units are codes\n"
           "  --ucum                 the same as --from ucum\n"
           "  --differences          read \"J/°C\" as \"J/K\" and say so\n"
           "  --dimensionless        read a number without a unit\n"
           "  --strict               refuse names that people use for something else: \"pH\"\n"
           "  --kinds                refuse to count rad, sr or bit as 1\n"
           "  --library              with explain, show what the library's own reader does\n"
           "  --json                 write one JSON object per line\n"
           "  --quiet                show no progress\n"
           "  --help, --version\n"
           "\n"
           "The status is 0 if all is well, 1 if some input was refused, 2 for wrong use.\n";
}
