// convert.cpp: converts values between units on the command line.
//
//     $ convert "2.5 km" m
//     2.5 km = 2500 m
//     $ printf '26.5 °C\n3 mbar\n' | convert - K Pa
//     26.5 °C = 299.65 K
//     3 mbar = 300 Pa
//
// "-" takes one value a line from standard input; --list prints every unit that is known by name.
// Numbers have a decimal point whatever the locale, and are written in the shortest form that reads
// back as the same double. What cannot be converted is named on standard error, the rest goes on,
// and the status is 1; that of wrong use is 2.
#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <exception>
#include <iostream>
#include <iterator>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include <mensor/NonSI.h>
#include <mensor/UnitFormat.h>
#include <mensor/ValueWithUnit.h>

namespace {

using mensor::CUnit, mensor::CUnitFormat, mensor::CUnitPtr, mensor::CValueWithUnit;

std::string program = "convert";  // the name it is called by; installed it is mensor-convert
constexpr std::string_view BLANKS = " \t\r";  // \r: files from elsewhere end their lines so

std::string shortest(double number) {
    char digits[32];
    return std::string(digits, std::to_chars(digits, std::end(digits), number).ptr);
}

std::string_view trimmed(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(BLANKS), text.size()));
    return text.substr(0, text.find_last_not_of(BLANKS) + 1);  // npos + 1 is 0
}

// Reads "2.5 km" or "9.81 m s-2": a number, a blank and a unit, which may itself hold blanks.
CValueWithUnit read(std::string_view text) {
    if (text.size() > 1 && text[0] == '+' && text[1] != '-')
        text.remove_prefix(1);
    double number = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    if (error == std::errc::result_out_of_range)
        throw std::out_of_range("the number is out of range");
    if (error != std::errc())
        throw std::invalid_argument("a number is missing");
    if (!std::isfinite(number))
        throw std::invalid_argument("the number is not finite");
    const std::string_view unit(rest, static_cast<std::size_t>(end - rest));
    if (unit.empty() || BLANKS.find(unit.front()) == std::string_view::npos)
        throw std::invalid_argument("a blank and a unit must follow the number");
    return CValueWithUnit(number, CUnit::fromString(std::string(trimmed(unit))));
}

void print(const CValueWithUnit& given, const CUnitPtr& target) {
    const std::string from = given.unit()->toStdString();
    const std::string to = target->toStdString();
    // The library's own message names symbols only, and labelled units such as °C have none.
    if (!given.unit()->isCompatible(target))
        throw std::invalid_argument(from + " is not compatible with " + to);
    const double result = given.valueAs(target);
    if (!std::isfinite(result))
        throw std::out_of_range("the result in " + to + " is out of range");
    std::cout << shortest(given.value()) << ' ' << from << " = " << shortest(result) << ' ' << to
              << '\n';
}

// Runs `action`; what it throws is reported as the trouble with `subject`.
template <class Action>
bool succeeds(const std::string& subject, Action action) {
    try {
        action();
        return true;
    } catch (const std::exception& trouble) {
        std::cerr << program << ": " << subject << ": " << trouble.what() << '\n';
        return false;
    }
}

bool convert(std::string_view text, const std::vector<CUnitPtr>& targets, std::string subject) {
    subject += '"' + std::string(text) + '"';
    CValueWithUnit given(0, nullptr);
    if (!succeeds(subject, [&] { given = read(text); }))
        return false;
    bool good = true;
    for (const CUnitPtr& target : targets)
        good = succeeds(subject, [&] { print(given, target); }) && good;
    return good;
}

bool convertLines(const std::vector<CUnitPtr>& targets) {
    bool good = true;
    std::string line;
    for (long number = 1; std::cout && std::getline(std::cin, line); ++number) {
        const std::string_view text = trimmed(line);
        if (!text.empty())
            good = convert(text, targets, "line " + std::to_string(number) + ": ") && good;
    }
    return good;
}

// One line for every name that can be read: the name, the unit in ASCII notation, its dimension,
// and what takes a value of the unit to the dimension.
void list() {
    std::map<std::string, CUnitPtr> catalogue;
    for (const auto& [name, unit] : mensor::CUnitFormat::names())
        catalogue.emplace(mensor::toStdString(name), unit);
    const auto ascii = mensor::CASCIIUnitFormat::instance();
    std::cout << "unit\tASCII\tdimension\tfactor\n";
    for (const auto& [name, unit] : catalogue) {
        const CUnitPtr dimension = unit->getDimension();
        const auto converter = unit->getConverterTo(dimension);
        const double offset = converter->convert(0);
        std::cout << name << '\t' << mensor::toStdString(ascii->format(unit, mensor::string_t()))
                  << '\t' << dimension->toStdString() << '\t' << shortest(converter->derivative(0))
                  << (offset == 0 ? "" : " + " + shortest(offset)) << '\n';
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc > 0) {
        const std::string_view path = argv[0];
        program = path.substr(path.rfind('/') + 1);  // npos + 1 is 0
    }
    const std::vector<std::string> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
    const bool listing = arguments == std::vector<std::string>{"--list"};
    if (!listing && (arguments.size() < 2 || arguments[0].rfind("--", 0) == 0)) {
        std::cerr << "usage: " << program << " \"VALUE UNIT\" UNIT... | " << program
                  << " - UNIT... | " << program << " --list\n";
        return 2;
    }
    mensor::NonSI::Psi();  // the one named unit that the library does not register by itself

    bool good = true;
    if (listing) {
        list();
    } else {
        std::vector<CUnitPtr> targets;
        for (auto name = arguments.begin() + 1; name != arguments.end(); ++name)
            if (!succeeds('"' + *name + '"', [&] { targets.push_back(CUnit::fromString(*name)); }))
                return 1;
        good = arguments[0] == "-" ? convertLines(targets)
                                   : convert(trimmed(arguments[0]), targets, "");
    }
    if (!std::cout.flush() || std::ferror(stdin) != 0) {
        std::cerr << program << ": cannot "
                  << (std::cout ? "read the input\n" : "write the output\n");
        return 1;
    }
    return good ? 0 : 1;
}
