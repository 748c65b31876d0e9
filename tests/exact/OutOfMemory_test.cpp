// OutOfMemory_test.cpp: if any allocation fails, std::bad_alloc is thrown, every object is unchanged,
// and no memory leaks.
#include <gtest/gtest.h>

#include <functional>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "mensor_exact/Certificate.h"
#include "mensor_exact/Conversion.h"
#include "mensor_exact/DefinitionFile.h"
#include "support/operator_new.h"

namespace mensor::exact {
namespace {

long failing = 0;

// Runs `work` repeatedly until it succeeds. In the n-th run the n-th allocation fails. Calls `check`
// after each run. Returns the number of failed runs.
long failEachAllocation(const std::function<void()>& work, const std::function<void()>& check) {
    for (failing = 1;; ++failing) {
        const long before = liveBlocks;
        bool isDone = false;
        allocations = 0;
        beforeAllocation = [](long number) {
            if (number == failing) {
                throw std::bad_alloc();
            }
        };
        try {
            work();
            isDone = true;
        } catch (const std::bad_alloc&) {
        }
        beforeAllocation = nullptr;
        EXPECT_EQ(liveBlocks, before) << "allocation " << failing;
        check();
        if (isDone) {
            return failing - 1;
        }
    }
}

TEST(OutOfMemory, AFailedDefinitionLeavesTheCatalogueAsItWas) {
    const CCatalogue catalogue = CCatalogue::builtIn().with({{"smoot", "1.7018 m"}});
    const std::size_t size = catalogue.definitions().size();
    const long failures = failEachAllocation(
        [&] {
            const CCatalogue more = catalogue.with(
                {{"bridge_of_a_long_name", "364.4 smoot"}, {"dozen", "12 piece"}, {"piece", ""}});
            const CMeaning meaning = *more.with(ePack::CUSTOMARY).meaning("dozen");
        },
        [&] {
            EXPECT_EQ(catalogue.definitions().size(), size);
            EXPECT_FALSE(catalogue.find("piece"));
            EXPECT_EQ(catalogue.meaning("smoot")->toString(), "1.7018 m");
        });
    EXPECT_GT(failures, 10);
}

TEST(OutOfMemory, AFailedFileLeavesTheCatalogueAsItWas) {
    const CCatalogue catalogue = CCatalogue::builtIn().with({{"smoot", "1.7018 m"}});
    const std::size_t size = catalogue.definitions().size();
    const std::string text =
        "bridge_of_a_long_name = 364.4 smoot\n"
        "piece = base unit\n"
        "replace min = 1/7 h\n"
        "a_scale_of_a_long_name = 5/4 K, zero at +273.15 K\n";
    const long failures = failEachAllocation(
        [&] {
            const CDefinitionFile file = tryReadDefinitions(text, catalogue, "units.txt");
            EXPECT_EQ(file.Names.size(), 4U);
            EXPECT_EQ(tryReadDefinitions("smot = 5 m 2\n", catalogue).Findings.size(), 1U);
        },
        [&] {
            EXPECT_EQ(catalogue.definitions().size(), size);
            EXPECT_FALSE(catalogue.find("piece"));
            EXPECT_EQ(catalogue.meaning("min")->toString(), "60 s");
        });
    EXPECT_GT(failures, 20);
}

TEST(OutOfMemory, FailedArithmeticLeavesMeaningsAndFractionsAsTheyWere) {
    const CMeaning price = CMeaning::base("a_currency_of_a_long_name");
    CMeaning target = CMeaning::base("another_one_with_a_name");
    const CMeaning before = target;
    const CFraction large = CFraction::ofText("123456789012345678901234567890123");
    CFraction number = large;
    const long failures = failEachAllocation(
        [&] {
            CMeaning product = price * CMeaning::base("m").scaled(CFactor(large)) / before.power(2);
            product = product.power(CExponent(1, 2)).scaled(CFactor::pi());
            EXPECT_NE(product.toString(), "");
            EXPECT_NE(product.kind(), "");
            CFraction sum = large + large * CFraction(1, 3) - large / CFraction(7);
            sum = sum.power(3);
            EXPECT_NE(sum.toString(), "");
        },
        [&] {
            EXPECT_EQ(target, before);
            EXPECT_EQ(number, large);
        });
    EXPECT_GT(failures, 10);
    // A failed assignment leaves its target unchanged, too.
    failEachAllocation(
        [&] {
            CMeaning copy = target;
            try {
                copy = price;
            } catch (const std::bad_alloc&) {
                beforeAllocation = nullptr;
                EXPECT_EQ(copy, target);
                throw;
            }
        },
        [] {});
}

TEST(OutOfMemory, AFailedConversionLeavesOthersAsTheyWere) {
    const CCatalogue catalogue = CCatalogue::builtIn().with(ePack::OFFSETS);
    const CConversion kept = CConversion::between("°F", "°C", catalogue);
    CConversion assigned = kept;
    const long failures = failEachAllocation(
        [&] {
            const CConversion made = CConversion::between("°F", "°C", catalogue);
            EXPECT_EQ(made.convertText("98.6"), "37");
            const CConversion inverse = made.inverse();
            EXPECT_EQ(inverse.convertText("1e-30"), "32");
            EXPECT_EQ(CConversion::between("Ym^99", "ym^99").convertText("1"), "1e4752");
            EXPECT_EQ(CConversion::between("°", "rad").convertText("90"), "1.5707963267948966");
        },
        [&] {
            EXPECT_EQ(kept.convert(98.6), 37.0);
            EXPECT_EQ(assigned.convert(98.6), 37.0);
        });
    EXPECT_GT(failures, 10);
}

TEST(OutOfMemory, EverydayConversionsOfDoublesAllocateNothing) {
    const CCatalogue catalogue = CCatalogue::builtIn().with(ePack::OFFSETS).with(ePack::CUSTOMARY);
    for (const auto& [from, to] : std::vector<std::pair<const char*, const char*>>{
             {"°F", "°C"}, {"km", "mi"}, {"psi", "bar"}, {"Ym", "ym"}, {"hp", "kW"}}) {
        const CConversion conversion = CConversion::between(from, to, catalogue);
        for (const double x : {98.6, 5e-324, 1.7976931348623157e308, -1e-200, 0.0}) {
            const long failures = failEachAllocation([&] { conversion.convert(x); }, [] {});
            EXPECT_EQ(failures, 0) << from << " " << x;
        }
    }
}

TEST(OutOfMemory, MeaningsOfSiUnitsAllocateNothing) {
    const CCatalogue catalogue = CCatalogue::builtIn();
    const long failures = failEachAllocation(
        [&] {
            const CMeaning meaning = catalogue.evaluate("kg·m²/(s²·K)");
            const CMeaning copy = meaning * *catalogue.meaning("°");
            EXPECT_TRUE(copy.isCompatibleWith(meaning));
        },
        [] {});
    EXPECT_EQ(failures, 0);
}

TEST(OutOfMemory, AFailedCertificateLeaksNothing) {
    const long failures = failEachAllocation(
        [] {
            const CCertificate certificate = certify("km/h", "m/s");
            EXPECT_NE(certificate.toJson() + certificate.toText(), "");
        },
        [] {});
    EXPECT_GT(failures, 10);
}

}  // namespace
}  // namespace mensor::exact
