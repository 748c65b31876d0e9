#include "Report.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <tuple>

// One line of the table: two benchmarks and the ratio that is aimed at.
struct CReport::Line {
    enum eKind {
        AT_MOST,   // the ratio first / second should not be above the target
        AT_LEAST,  // the ratio second / first, a gain in throughput, should not be below the target
        BYTES,     // the first alone, in bytes, should not be above the target
        TIME,      // the first alone, in nanoseconds, should not be above the target
        HEADING    // begins a new section of the table
    };
    eKind Kind;
    std::string Work;
    std::string First;
    std::string Second;
    double Target;  // none if 0
};

// In the order of the table. A line whose benchmarks were not run is left out.
const std::vector<CReport::Line>& CReport::lines() {
    static const std::vector<Line> lines = [] {
        std::vector<Line> all;
        const auto heading = [&](const char* text) {
            all.push_back({Line::HEADING, text, "", "", 0});
        };
        const auto against = [&](const std::string& work, const char* peer, double target = 0,
                                 const std::string& peersWork = "") {
            all.push_back({Line::AT_MOST, work, work + ": mensor",
                           (peersWork.empty() ? work : peersWork) + ": " + peer, target});
        };
        const auto peer = [&](const std::string& work, double target = 0) {
            against(work, "UDUNITS-2", target);
        };

        heading("Load");
        against("start a process", "nothing");
        against("start a process", "UDUNITS-2");
        peer("own part of the start", 0.25);
        against("own part of the start", "the least");
        all.push_back({Line::AT_MOST, "own part of the start, the least of it",
                       "own part of the start: the least", "own part of the start: UDUNITS-2", 0});
        for (const char* what : {"heap", "resident"}) {
            all.push_back({Line::BYTES, std::string("own memory after load, ") + what,
                           std::string("memory: mensor ") + what,
                           std::string("memory: UDUNITS-2 ") + what,
                           std::string(what) == "resident" ? 1e6 : 0.0});
        }

        heading("Parse");
        peer("parse m", 0.15);
        peer("parse km", 0.10);
        peer("parse kPa");
        peer("parse mm_Hg");
        peer("parse m/s", 0.17);
        peer("parse kg*m^2/s^2", 0.16);
        peer("parse kg·m²/s²", 0.18);
        peer("parse mol/(m^3*s)", 0.16);
        peer("parse a mix of 50", 0.15);
        peer("parse a text not seen before");
        peer("parse an unknown name");
        against("parse an unknown name", "bare throw and catch", 2.5);

        heading("Algebra");
        for (const char* what : {"multiply", "divide", "pow"}) {
            peer(std::string(what) + ", first time");
            peer(std::string(what) + ", repeated", 0.75);
        }

        heading("Look up a converter");
        peer("look up km to m", 2);
        against("look up km to m", "the least");
        peer("look up °C to K");
        peer("look up h to min", 4.5);
        peer("look up kg·m²/s² to J");
        peer("look up and convert km to m");
        peer("look up and convert °C to K");
        peer("look up and convert h to min");
        peer("look up and convert kg·m²/s² to J");

        heading("Convert one value");
        for (const char* how : {"dependent", "independent"}) {
            const std::string end = std::string(", ") + how;
            peer("convert km to m" + end, 1.1);
            against("convert km to m" + end, "Boost.Units");
            peer("convert °C to K" + end);
            against("convert °C to K" + end, "Boost.Units");
            peer("convert year_calendar to s" + end);
        }

        heading("Convert an array");
        const std::pair<const char*, double> sizes[] = {
            {"10^3 values", 0.4}, {"10^6 values", 0.65}, {"10^7 values", 1.0}};
        for (const auto& [size, target] : sizes) {
            const std::string scaled = std::string(size) + " km to m";
            peer(scaled, target);
            against(scaled, "plain loop", 1.15, size);
            against(scaled, "memcpy", 0, size);
            against(scaled, "mensor, a loop of convert");
            const std::string shifted = std::string(size) + " °C to K";
            peer(shifted, target);
            against(shifted, "plain loop", 1.15, size);
        }

        heading("Format");
        peer("format m", 0.7);
        peer("format km", 0.7);
        peer("format kg·m²/s²", 0.4);
        peer("format kg·m²/(s³·A)", 0.4);

        heading("Request");
        peer("request 2.5 km in m", 0.22);

        heading("Exactly, one value");
        const auto exactly = [&](const std::string& work, const std::string& other, const char* who,
                                 double target) {
            all.push_back(
                {Line::AT_MOST, work, work + ": mensor::exact", other + ": " + who, target});
        };
        const std::tuple<const char*, double, double> exactPairs[] = {
            {"ft to m", 2.2, 1.5},  {"m/s to km/h", 2.2, 1.5}, {"m to in", 2.2, 1.5},
            {"° to rad", 2.2, 1.5}, {"rad to °", 2.2, 1.5},    {"°F to °C", 5.5, 2.5},
            {"°C to °F", 5.5, 2.5}};
        for (const auto& [pair, dependent, independent] : exactPairs) {
            const bool isLinear = dependent < 5;
            for (const auto& [how, target] :
                 {std::pair{", dependent", dependent}, {", independent", independent}}) {
                const std::string work = std::string("exact, ") + pair + how;
                exactly(work, std::string("exact, one value") + how, "a virtual call", target);
                exactly(work, work, "UDUNITS-2", isLinear ? 1 : 0);
                if (isLinear) {
                    exactly(work, std::string("exact, one value") + how, "the least", 0);
                }
            }
        }
        for (const char* how : {", dependent", ", independent"}) {
            const std::string work = std::string("exact, one value") + how;
            all.push_back({Line::AT_MOST, work + ", the least", work + ": the least",
                           std::string("exact, ft to m") + how + ": UDUNITS-2", 0});
            all.push_back({Line::AT_MOST, work + ", a virtual call", work + ": a virtual call",
                           work + ": a virtual call inside the program", 0});
        }
        exactly("exact, without FMA, ft to m, dependent", "exact, one value, dependent",
                "a virtual call", 6.5);
        for (const auto& pair : exactPairs) {
            const std::string work = std::string("exact, build ") + std::get<0>(pair);
            all.push_back({Line::TIME, work, work + ": mensor::exact", work + ": UDUNITS-2", 2000});
        }
        exactly("exact, 98.6 °F as text", "exact, 98.6 °F as text", "from_chars, to_chars", 3);

        heading("Exactly, arrays");
        const std::tuple<const char*, double, double> exactSizes[] = {
            {"exact, 10^3 values", 1.75, 8},
            {"exact, 10^6 values", 1.15, 2.5},
            {"exact, 1.6·10^7 values", 1.1, 1.25}};
        for (const auto& [size, linear, offset] : exactSizes) {
            for (const auto& pair : exactPairs) {
                const bool isLinear = std::get<1>(pair) < 5;
                const std::string work = std::string(size) + " " + std::get<0>(pair);
                const bool isTested = work.find("rad to °") != std::string::npos;
                const double tested = std::string(size) == "exact, 10^3 values" ? 3 : linear;
                exactly(work, size, "a plain loop", isTested ? tested : isLinear ? linear : offset);
                exactly(work, work, "UDUNITS-2", 1);
            }
        }
        exactly("exact, without FMA, 10^3 values ft to m", "exact, without FMA, 10^3 values",
                "a scalar loop", 6);
        exactly("exact, 10^3 counts of m°C to °F", "exact, 10^3 counts", "a plain loop", 5);
        exactly("exact, 10^6 counts of m°C to °F", "exact, 10^6 counts", "a plain loop", 2);

        heading("The checked companion against the library");
        for (const char* text : {"m", "km", "m/s", "kg·m²/s²", "mol/(m^3*s)"}) {
            all.push_back({Line::AT_MOST, std::string("checked, read ") + text,
                           std::string("read ") + text + ": mensor::checked",
                           std::string("parse ") + text + ": mensor", 3});
        }
        all.push_back({Line::AT_MOST, "checked, read one of 2000 texts",
                       "read one of 2000 texts: mensor::checked", "read one of 2000 texts: mensor",
                       3});

        heading("Exact reading against UDUNITS-2");
        const std::pair<const char*, double> texts[] = {
            {"m", 0}, {"km", 0.15}, {"m/s", 0}, {"kg·m²/s²", 0.2}, {"mol/(m^3*s)", 0}};
        for (const auto& [text, target] : texts) {
            all.push_back({Line::AT_MOST, std::string("read exactly ") + text,
                           std::string("read exactly ") + text + ": mensor::exact",
                           std::string("parse ") + text + ": UDUNITS-2", target});
        }

        all.push_back({Line::AT_MOST, "read 2.5 km exactly, in m",
                       "read 2.5 km exactly, in m: mensor::exact", "request 2.5 km in m: UDUNITS-2",
                       0.3});
        all.push_back({Line::TIME, "read exactly the first text",
                       "read exactly the first text: mensor::exact",
                       "read exactly km: mensor::exact", 10000});
        for (const char* text : {"xyzzy", "W/m²/K"}) {
            const std::string work = std::string("refuse exactly ") + text;
            all.push_back({Line::TIME, work, work + ": code", work + ": words", 1000});
            all.push_back({Line::TIME, work + ", with words", work + ": words", work + ": code",
                           text[0] == 'x' ? 30000.0 : 0.0});
        }

        heading("Codes of tables against a map of ready-made meanings");
        for (const char* system : {"UNECE", "SENML", "OPCUA"}) {
            const std::string work = std::string("find each ") + system;
            all.push_back({Line::AT_MOST, work, work + ": mensor::codes",
                           work + ": std::unordered_map", 2.75});
        }

        heading("Codes of UCUM against UDUNITS-2");
        for (const char* code : {"mg/dL", "kg.m2/s2", "mL/min/kg", "W/(m2.K)"}) {
            const std::string work = std::string("read UCUM ") + code;
            all.push_back({Line::AT_MOST, work, work + ": mensor::codes", work + ": UDUNITS-2", 0});
        }

        heading("Hardening");
        for (const char* what :
             {"start a process", "parse", "look up", "convert", "format", "request"}) {
            against(std::string("hardened, ") + what, "not hardened");
        }

        heading("Two threads");
        const std::pair<const char*, double> works[] = {
            {"share nothing", 0}, {"parse", 0.65},   {"look up", 0},
            {"convert", 1.9},     {"request", 0.65}, {"read exactly", 1.95}};
        for (const auto& [work, target] : works) {
            for (const char* units : {", distinct units", ", same unit"}) {
                const std::string name = std::string(work) + units;
                const bool aimed = units[2] == 'd' || target > 1;
                all.push_back({Line::AT_LEAST, name, name + ": two threads", name + ": one thread",
                               aimed ? target : 0});
            }
        }
        return all;
    }();
    return lines;
}

namespace {

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    const std::size_t middle = values.size() / 2;
    return values.size() % 2 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

// Half the distance between the quartiles, in per cent of the median.
double spread(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    const double half = (values[values.size() * 3 / 4] - values[values.size() / 4]) / 2;
    return 100 * half / std::fabs(median(values));
}

std::string number(double value) {
    char buffer[32];
    const int decimals = value >= 100 ? 0 : value >= 10 ? 1 : value >= 0.1 ? 2 : 3;
    std::snprintf(buffer, sizeof buffer, "%.*f", decimals, value);
    return buffer;
}

std::string duration(double nanoseconds) {
    return nanoseconds < 1e4   ? number(nanoseconds) + " ns"
           : nanoseconds < 1e7 ? number(nanoseconds / 1e3) + " µs"
                               : number(nanoseconds / 1e6) + " ms";
}

std::string bytes(double count) { return number(count / 1000) + " kB"; }

std::string who(const std::string& name) { return name.substr(name.rfind(": ") + 2); }

}  // namespace

CReport::CReport(std::string folder) : m_Folder(std::move(folder)) {}

void CReport::ReportRuns(const std::vector<Run>& runs) {
    for (const Run& run : runs) {
        if (run.run_type != Run::RT_Iteration) {
            continue;
        }
        const std::string& name = run.run_name.function_name;
        if (run.error_occurred) {
            m_Failures.push_back(name + ": " + run.error_message);
            continue;
        }
        const auto note = [this](const std::string& key, double value) {
            std::vector<double>& times = m_Times[key];
            if (times.empty()) {
                m_Names.push_back(key);
            }
            times.push_back(value);
        };
        for (const auto& [key, counter] : run.counters) {
            if (key == "heap" || key == "resident") {
                note(name + " " + key, counter);
            }
        }
        if (run.counters.count("heap") != 0) {
            continue;  // a benchmark of memory, whose time has no meaning
        }
        // Usually the processor time, so that other processes do not count. Else the time on the clock.
        const bool wall = !run.run_name.time_type.empty();
        note(name, (wall ? run.GetAdjustedRealTime() : run.GetAdjustedCPUTime()) * 1e9 /
                       benchmark::GetTimeUnitMultiplier(run.time_unit));
    }
    std::cerr << '.' << std::flush;
}

std::string CReport::table(std::string& data) const {
    std::string text =
        "| Work | mensor | other | its figure | ratio | target | |\n"
        "|---|---:|---|---:|---:|---:|---|\n";
    std::string heading;
    int reached = 0, missed = 0;
    for (const Line& line : lines()) {
        if (line.Kind == Line::HEADING) {
            heading = "| **" + line.Work + "** | | | | | | |\n";
            continue;
        }
        const auto first = m_Times.find(line.First), second = m_Times.find(line.Second);
        if (first == m_Times.end() || second == m_Times.end()) {
            continue;
        }
        const double ours = median(first->second), theirs = median(second->second);
        const double ratio = line.Kind == Line::AT_LEAST ? theirs / ours : ours / theirs;
        const bool isAbsolute = line.Kind == Line::BYTES || line.Kind == Line::TIME;
        const double judged = isAbsolute ? ours : ratio;
        std::string target, verdict;
        if (line.Target > 0) {
            const bool ok =
                line.Kind == Line::AT_LEAST ? judged >= line.Target : judged <= line.Target;
            ok ? ++reached : ++missed;
            target = line.Kind == Line::BYTES      ? "≤ " + bytes(line.Target)
                     : line.Kind == Line::TIME     ? "≤ " + duration(line.Target)
                     : line.Kind == Line::AT_LEAST ? "≥ " + number(line.Target)
                                                   : "≤ " + number(line.Target);
            verdict = ok ? "ok" : "**missed**";
        }
        const auto figure = line.Kind == Line::BYTES ? bytes : duration;
        text += heading + "| " + line.Work + " | " + figure(ours) + " | " + who(line.Second) +
                " | " + figure(theirs) + " | " + number(ratio) + " | " + target + " | " + verdict +
                " |\n";
        heading.clear();
        if (line.Kind == Line::AT_MOST && who(line.Second) == "UDUNITS-2") {
            data += "\"" + line.Work + "\"\t" + std::to_string(ratio) + "\t" +
                    (line.Target > 0 ? std::to_string(line.Target) : "NaN") + "\n";
        }
    }
    return text + "\n" + std::to_string(reached) + " targets reached, " + std::to_string(missed) +
           " missed.\n";
}

std::string CReport::times() const {
    std::string text =
        "| Benchmark | median | spread | repetitions |\n"
        "|---|---:|---:|---:|\n";
    for (const std::string& name : m_Names) {
        const std::vector<double>& values = m_Times.at(name);
        const bool memory = name.rfind("memory", 0) == 0;
        text += "| " + name + " | " + (memory ? bytes(median(values)) : duration(median(values))) +
                " | ± " + number(spread(values)) + " % | " + std::to_string(values.size()) + " |\n";
    }
    return text;
}

void CReport::Finalize() {
    std::string data;
    const std::string text = table(data);
    std::cerr << '\n';
    std::cout << text;
    for (const std::string& failure : m_Failures) {
        std::cout << "Not measured: " << failure << '\n';
    }
    if (!m_Folder.empty()) {
        std::ofstream(m_Folder + "/table.md") << text;
        std::ofstream(m_Folder + "/times.md") << times();
        std::ofstream(m_Folder + "/ratios.dat") << data;
    }
}
