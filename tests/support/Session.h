// Session.h: typical requests of programs to the library, once or repeatedly, as a list whose
// answers can be compared.
//
//     for (const test::Request& request : test::asking()) {
//         std::cout << request.Name << ": " << test::outcomeOf(request) << '\n';
//     }
#ifndef MENSOR_TESTS_SESSION_H
#define MENSOR_TESTS_SESSION_H

#include <functional>
#include <limits>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "mensor/AddConverter.h"
#include "mensor/BaseUnit.h"
#include "mensor/MultiplyConverter.h"
#include "mensor/NonSI.h"
#include "mensor/ProductUnit.h"
#include "mensor/SI.h"
#include "mensor/TransformedUnit.h"
#include "mensor/Unit.h"
#include "mensor/UnitFormat.h"
#include "mensor/ValueWithUnit.h"
#include "mensor/io.h"
#include "mensor_checked/Audit.h"
#include "mensor_checked/Choosing.h"
#include "mensor_checked/Differences.h"
#include "mensor_checked/OwnUnits.h"
#include "mensor_checked/Packs.h"
#include "mensor_checked/Reading.h"
#include "mensor_checked/Values.h"
#include "mensor_checked/making.h"
#include "support/ClientUnit.h"
#include "support/Matchers.h"
#include "support/outcome.h"

namespace mensor::test {

using Answer = std::variant<CUnitPtr, double, std::string>;

struct Request {
    std::string Name;
    std::function<Answer()> Ask;
};

using Requests = std::vector<Request>;

/// The answer as a text: a unit with its hash code and id, a number with its bits.
inline std::string described(const Answer& answer) {
    std::ostringstream out;
    if (const auto* unit = std::get_if<CUnitPtr>(&answer)) {
        out << "unit " << *unit;
        if (*unit) {
            out << ", hash " << (*unit)->hashCode() << ", id " << Inside::id(*unit);
        }
    } else if (const auto* number = std::get_if<double>(&answer)) {
        out << exactly(*number);
    } else {
        out << '"' << std::get<std::string>(answer) << '"';
    }
    return out.str();
}

/// The outcome of the request: its answer, or the exception.
inline std::string outcomeOf(const Request& request) {
    Answer answer;
    const std::string end = mensor::outcomeOf([&] { answer = request.Ask(); });
    return end == "returned" ? described(answer) : end;
}

inline CUnitPtr unit(const char* text) { return CUnit::fromString(text); }

inline std::string streamed(const CUnitPtr& unit) {
    std::ostringstream out;
    out.exceptions(std::ios_base::badbit);
    out << unit;
    return out.str();
}

/// Requests that register units, labels and aliases the first time. The other requests need them.
inline Requests registering() {
    const auto box = [] { return CUnitFormat::unitFor("box"); };
    return {
        {"base unit", [] { return CBaseUnit::getInstance("box"); }},
        {"product", [=] { return box() * SI::Meter(); }},
        {"quotient", [=] { return box() / SI::Second(); }},
        {"power", [=] { return box() ^ 3; }},
        {"reciprocal power", [=] { return box() ^ -2; }},
        {"root", [=] { return box()->root(5); }},
        {"reciprocal root", [=] { return box()->root(-3); }},
        {"power of a root", [=] { return box()->root(7) ^ 3; }},
        {"power beyond the cache", [=] { return box() ^ 5000; }},
        {"product of products", [=] { return (box() / SI::Mole()) * (SI::Second() / box()); }},
        {"scaled unit", [=] { return box() * 12.0; }},
        {"shifted unit", [=] { return box() + 40.0; }},
        {"scaled shifted unit", [=] { return (box() + 40.0) * 7.0; }},
        {"prefix of a product", [=] { return SI::Micro(box() / SI::Second()); }},
        {"product of scaled units", [=] { return SI::Mega(box()) / SI::Pico(SI::Second()); }},
        {"alternate unit", [=] { return (box() / SI::Second())->alternate("flow"); }},
        {"alternate of an alternate", [] { return unit("flow")->alternate("gush"); }},
        {"label", [=] { return CUnitFormat::label(box() * 12.0, "dozen"); }},
        {"another label", [=] { return CUnitFormat::label(box() * 12.0, "crate"); }},
        {"label of a product", [=] { return CUnitFormat::label(box() / SI::Mole(), "fill"); }},
        {"alias", [=] { return CUnitFormat::alias(box() * 12.0, "a_name_of_many_bytes"); }},
        {"labels with prefixes",
         [=] {
             CUnitFormat::labelPrefixedUnit({KILO, MILLI}, box());
             return CUnitFormat::unitFor("kbox");
         }},
        {"unit that labels itself", [] { return NonSI::Psi(); }},
        {"unit with the empty label", [] { return NonSI::None(); }},
        {"dimension of a base unit",
         [=] {
             CBaseUnit::getInstance("lot")->setDimension(box(),
                                                         std::make_shared<CMultiplyConverter>(48));
             return CUnit::fromString("lot")->getDimension();
         }},
        {"checked scaled unit", [=] { return checked::scaled(box(), 144.0); }},
        {"checked affine unit", [=] { return checked::affine(box(), 2.5, 100.0); }},
        {"checked alternate unit",
         [=] { return checked::alternateUnit("heap", box() / SI::Meter()); }},
    };
}

/// Requests that register several units or none of them. A refusal that removes the first ones
/// switches the caches off.
inline Requests registeringMany() {
    return {
        {"pack of units",
         [] {
             checked::registerPack(checked::ePack::OFFSETS);
             return "registered";
         }},
        {"table of units",
         [] { return checked::defineUnits("bag = 25 kg\nbag_flow = 1 bag/h\n").back(); }},
        {"table whose second line is refused",
         [] { return checked::defineUnits("pack = 6 box\nm = 2 box\n").back(); }},
    };
}

/// Requests that are answered.
inline Requests asking() {
    Requests requests;
    for (const char* text : {"km",
                             "kg·m²/s³",
                             "W/(m²·K)",
                             "mm/µs",
                             "V/s^1:2",
                             "kN·mV^3:4",
                             "box²/min",
                             "kbox/h",
                             "crate",
                             "a_name_of_many_bytes",
                             "flow·m",
                             "fill",
                             "°C",
                             "psi",
                             "",
                             "m s^-2 kg A",
                             "m s kg A K mol cd",
                             "<b>kcd</b>&middot;Gy^-1",
                             "lx^2:3 lx^1:3",
                             "1/(kat·box·A²)",
                             "mol/(kg·s·m³·K²) cd rad/sr bit byte",
                             "box^4097"}) {
        requests.push_back({std::string("reading ") + text, [=] { return unit(text); }});
        requests.push_back({std::string("writing ") + text, [=] {
                                return mensor::text(
                                    CStandardUnitFormat::instance()->format(unit(text), "= "));
                            }});
        requests.push_back(
            {std::string("writing in ASCII ") + text,
             [=] { return mensor::text(CASCIIUnitFormat::instance()->format(unit(text), "")); }});
        requests.push_back(
            {std::string("streaming ") + text, [=] { return streamed(unit(text)); }});
        requests.push_back(
            {std::string("dimension of ") + text, [=] { return unit(text)->getDimension(); }});
    }
    const std::pair<const char*, const char*> pairs[] = {
        {"km/h", "m/s"},       {"kJ", "N·m"},       {"°C", "K"},       {"K", "°C"},
        {"bar", "psi"},        {"box/s", "flow"},   {"gush", "box/h"}, {"lot", "crate"},
        {"lot²·h", "box²·µs"}, {"mN^1:2", "N^1:2"}, {"m", "m"}};
    for (const auto& [from, to] : pairs) {
        const std::string names = std::string(from) + " to " + to;
        requests.push_back({names, [=, from = from, to = to] {
                                return unit(from)->convertValueToUnit(2.5, unit(to));
                            }});
        requests.push_back({"whether " + names, [=, from = from, to = to] {
                                return unit(from)->isCompatible(unit(to)) ? 1.0 : 0.0;
                            }});
        requests.push_back({"converter of " + names, [=, from = from, to = to] {
                                return unit(from)->getConverterTo(string_t(to))->convert(2.5);
                            }});
        requests.push_back({"inverse of " + names, [=, from = from, to = to] {
                                const auto converter = unit(from)->getConverterTo(unit(to));
                                return converter->inverse()->concatenate(converter)->convert(2.5) +
                                       converter->hashCode();
                            }});
        requests.push_back({"array of " + names, [=, from = from, to = to] {
                                std::vector<double> values{1.5, 2.5, -3.5};
                                unit(from)->getConverterTo(unit(to))->convertAll(
                                    values.data(), values.data(), values.size());
                                return values[0] + values[1] * values[2];
                            }});
    }
    const Requests others = {
        {"text of many factors",
         [] {
             std::string text = "m";
             for (int i = 0; i < 35; ++i) {
                 text += "·box/mol";
             }
             return CUnit::fromString(text);
         }},
        {"value", [] { return CValueWithUnit::fromString("2.5 km").valueAs(SI::Meter()); }},
        {"value of a product", [] { return CValueWithUnit::fromString("7 mol/box·m").unit(); }},
        {"value as text", [] { return text(CValueWithUnit(0.1, unit("W/(m²·K)")).toString()); }},
        {"sum",
         [] {
             return text(
                 (CValueWithUnit(1, unit("km")) + CValueWithUnit(500, unit("m"))).toString());
         }},
        {"difference",
         [] { return (CValueWithUnit(1, unit("h")) - CValueWithUnit(1, unit("min"))).value(); }},
        {"comparison",
         [] {
             const CValueWithUnit a(1, unit("crate")), b(12, unit("box"));
             return (a == b ? 1.0 : 0.0) + (a < b ? 2.0 : 0.0) + (a > b ? 4.0 : 0.0);
         }},
        {"other unit",
         [] { return text(CValueWithUnit(90, unit("km/h")).convertTo(unit("m/s")).toString()); }},
        {"unit without text", [] { return streamed(unit("kg·m²/s³") * 1609.344); }},
        {"product of a unit without text",
         [] { return streamed((SI::Kelvin() * 1.8) / (SI::Meter() * 1609.344)); }},
        {"notation of an offset",
         [] { return text(CAddConverter(-4596700000.0).getSymbol(unit("kat"))); }},
        {"notation of a factor",
         [] { return text(CMultiplyConverter(-1609344e-12).getSymbol(unit("kat"))); }},
        {"sum of offsets",
         [] {
             CAddConverterPtr offset = std::make_shared<CAddConverter>(1.5);
             return offset->concatenate(offset->inverse())->convert(0.25);
         }},
        {"equal converters",
         [] {
             const auto toMetre = unit("km")->getConverterTo(unit("m"));
             return toMetre->equals(unit("mm")->getConverterTo(unit("µm"))) ? 1.0 : 0.0;
         }},
        {"checked unit", [] { return checked::readUnit("W/(m^2 K)"); }},
        {"checked unit with a note",
         [] {
             const checked::CReading reading = checked::tryReadUnit("N*mm");
             return reading.Notes.empty() ? std::string() : reading.Notes.front();
         }},
        {"checked unit of other spelling", [] { return checked::readUnit("kΩ·mol⁻¹"); }},
        {"checked value", [] { return text(checked::readValue("−1.25 kJ/(mol·K)").toString()); }},
        {"checked text", [] { return checked::writeValue(0.1, unit("kg·m²/s³")); }},
        {"checked text of a unit", [] { return checked::textOf(unit("N*mm")).value_or("none"); }},
        {"checked product", [] { return checked::product(unit("kV"), unit("mA")); }},
        {"checked audit",
         [] {
             return checked::audit({"km/h", "1/V", "s/m"}).front().Refusal.message();
         }},
        {"unit to choose", [] { return checked::readableUnit(25000.0, unit("m")); }},
        {"checked difference",
         [] { return checked::convertDifference(9.0, unit("°C"), unit("K")); }},
    };
    requests.insert(requests.end(), others.begin(), others.end());
    return requests;
}

/// Requests that are refused, each with an exception.
inline Requests refused() {
    Requests requests;
    for (const char* text :
         {"xyz", "km/xyz", "an unknown name of more bytes than fit into a string", "m^99999999999",
          "m^2000000000 m^2000000000", "m^1:0", "kg^1:2147483647 m^2 kg^1:2147483629"}) {
        requests.push_back({std::string("reading ") + text, [=] { return unit(text); }});
    }
    for (const char* text : {"W/m²/K", "kmh", "", "m^x", "J/°C", "m°C", "(m", "m^0.333", "²m",
                             "m 2 s", "m^2^3", "\xFFm"}) {
        requests.push_back(
            {std::string("checked reading ") + text, [=] { return checked::readUnit(text); }});
    }
    for (const char* text : {"5m", "x m", "1e999 m", "2.5 xyz", ""}) {
        requests.push_back({std::string("value ") + text,
                            [=] { return CValueWithUnit::fromString(text).unit(); }});
    }
    for (const char* text : {"2,5 m", "x m", "1e999 m", "0x10 m", "nan m", "2.5 ", ""}) {
        requests.push_back({std::string("checked value ") + text,
                            [=] { return checked::readValue(text).unit(); }});
    }
    const CUnitPtr none;
    const Requests others = {
        {"metre to second", [] { return SI::Meter()->convertValueToUnit(1, SI::Second()); }},
        {"product to another",
         [] { return unit("kat·lx")->getConverterTo(unit("box·lx"))->convert(1); }},
        {"offset in a product", [] { return unit("°C/m")->convertValueToUnit(1, unit("K/m")); }},
        {"label that is a symbol", [] { return CUnitFormat::label(unit("km"), "m"); }},
        {"label of another unit", [] { return CUnitFormat::label(unit("mm"), "km"); }},
        {"long label of another unit",
         [] { return CUnitFormat::label(unit("mm"), "year_sidereal"); }},
        {"symbol of a base unit", [] { return SI::Newton()->alternate("kg"); }},
        {"symbol of a unit of another hash",
         [] { return CClientUnit::make("mol", hashFromString("molly"))->canonical(); }},
        {"alternate of a scaled unit", [] { return unit("km")->alternate("mil"); }},
        {"expansion of a scaled unit", [] { return unit("km")->baseUnits(); }},
        {"root of order zero", [] { return SI::Meter()->root(0); }},
        {"power that has no negation",
         [] { return SI::Meter() ^ std::numeric_limits<int>::min(); }},
        {"power out of range",
         [] { return (unit("box") ^ 5000) ^ std::numeric_limits<int>::max(); }},
        {"unit without text", [] { return (SI::Meter() * 1609.344)->toStdString(); }},
        {"sum of unlike values",
         [] { return (CValueWithUnit(1, SI::Meter()) + CValueWithUnit(1, SI::Second())).value(); }},
        {"value without a unit", [=] { return text(CValueWithUnit(1, none).toString()); }},
        {"factor that is no unit", [=] { return SI::Meter() * none; }},
        {"unit to nothing", [=] { return SI::Meter()->convertValueToUnit(1, none); }},
        {"label of nothing", [=] { return CUnitFormat::label(none, "nothing"); }},
        {"alias of nothing", [=] { return CUnitFormat::alias(none, "nothing"); }},
        {"transformation of nothing",
         [=] { return CTransformedUnit::getInstance(none, CConverter::identity()); }},
        {"compound of one", [] { return CCompound(CConverter::identity(), nullptr).convert(1); }},
        {"array that is null",
         [] {
             CConverter::identity()->convertAll(nullptr, nullptr, 1);
             return 0.0;
         }},
        {"checked text of a unit without any",
         [] { return checked::writeValue(1, SI::Meter() * 1609.344); }},
        {"checked symbol of another unit",
         [] { return checked::alternateUnit("kg", SI::Newton()); }},
        {"table with a unit that is another",
         [] { return checked::defineUnits("m = 2 box\n").back(); }},
        {"checked product with an offset",
         [] { return checked::product(SI::Celsius(), SI::Meter()); }},
    };
    requests.insert(requests.end(), others.begin(), others.end());
    return requests;
}

}  // namespace mensor::test

#endif  // MENSOR_TESTS_SESSION_H
