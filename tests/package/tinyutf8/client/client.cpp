// client.cpp: a client of mensor with the string of tiny-utf8. It tests that the class in this folder
// behaves as tiny-utf8 where that differs from mensor's own class. Then it tests that the texts of
// mensor are right.
#include <mensor/SI.h>
#include <mensor/UnitFormat.h>
#include <mensor/ValueWithUnit.h>
#include <mensor/io.h>

#include <iostream>
#include <sstream>
#include <type_traits>
#include <utility>

namespace {

int failures = 0;

void expect(bool isRight, const char* what) {
    if (!isRight) {
        std::cout << "wrong: " << what << '\n';
        ++failures;
    }
}

}  // namespace

namespace with_an_operator_of_its_own {

struct Hides {};
std::ostream& operator<<(std::ostream& stream, const Hides&);

template <class T, class = void>
struct IsStreamable : std::false_type {};
template <class T>
struct IsStreamable<T, std::void_t<decltype(std::declval<std::ostream&>() << std::declval<T>())>>
    : std::true_type {};

}  // namespace with_an_operator_of_its_own

int main() {
    using namespace mensor;
    static_assert(std::is_same_v<string_t, tiny_utf8::utf8_string>);
    static_assert(!with_an_operator_of_its_own::IsStreamable<string_t>::value,
                  "the operator is global and hidden by any other");

    const char zeros[5] = {'a', 0, 'b', 0, 0};
    const char noZero[2] = {'a', 'b'};
    const char* const pointer = zeros;
    expect(string_t(zeros).size() == 4, "an array is taken whole but for its last zero");
    expect(string_t(noZero).size() == 2, "an array without a zero is taken whole");
    expect(string_t(pointer).size() == 1, "a pointer is read up to the first zero");
    string_t text = "µm";
    expect(std::is_class_v<decltype(text[0])>, "an index gives a proxy");
    expect(std::is_class_v<std::decay_t<decltype(*text.begin())>>, "an iterator gives a proxy");
    expect(text[0] == U'µ' && *text.begin() == U'µ', "a proxy converts to the code point");
    std::ostringstream global;
    global << text;
    expect(global.str() == "µm", "the global operator writes the bytes");

    const CUnitPtr area = SI::Meter() ^ 2;
    const CUnitPtr fourth = SI::Meter() ^ 4;
    const CUnitPtr root = (SI::Meter() ^ 3)->root(2);
    expect(fourth->toString().size() == 3, "an exponent is followed by no zero bytes");
    expect(fourth->toStdString() == "m^4", "m^4");
    expect(root->toStdString() == "m^3:2", "m^3:2");
    expect(toStdString(CASCIIUnitFormat::instance()->format(area, "x")) == "xm^2", "ASCII");
    expect(CUnit::fromString(fourth->toString()) == fourth, "m^4 reads back");

    std::ostringstream described;
    described << SI::Meter() * 1609.344;
    expect(described.str() == "[m*1609.34]", "a unit without a text is described");

    const std::string value = toStdString(CValueWithUnit(1.5, SI::Meter()).toString());
    expect(value == "1.500000" + std::string(55, '\0') + " m", "a value's field has 63 bytes");
    std::cout << (failures == 0 ? "as expected\n" : "failed\n");
    return failures == 0 ? 0 : 1;
}
