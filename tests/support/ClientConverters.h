// ClientConverters.h: converters as clients may write them. The library can only call their virtual
// functions.
#ifndef MENSOR_TESTS_CLIENTCONVERTERS_H
#define MENSOR_TESTS_CLIENTCONVERTERS_H

#include <cmath>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "mensor/Converter.h"

namespace mensor {

/// A scaling that is not a CMultiplyConverter.
class CScaling : public CConverter {
public:
    explicit CScaling(double factor) : m_Factor(factor) {}
    CConverterPtr inverse() override { return std::make_shared<CScaling>(1.0 / m_Factor); }
    double convert(double x) const override { return x * m_Factor; }
    double derivative(double) const override { return m_Factor; }
    bool isLinear() const override { return true; }

private:
    double m_Factor;
};

/// x² or its inverse, for values that are not negative.
class CSquare : public CConverter {
public:
    explicit CSquare(bool isRoot = false) : m_IsRoot(isRoot) {}
    CConverterPtr inverse() override { return std::make_shared<CSquare>(!m_IsRoot); }
    double convert(double x) const override { return m_IsRoot ? std::sqrt(x) : x * x; }
    double derivative(double x) const override { return m_IsRoot ? 0.5 / std::sqrt(x) : 2 * x; }
    bool isLinear() const override { return false; }

private:
    bool m_IsRoot;
};

/// x / (1 + bend · x): a non-linear scale with the slope 1 at zero. It needs only basic arithmetic,
/// so its bits are the same on all platforms.
class CBent : public CConverter {
public:
    explicit CBent(double bend = 1.0) : m_Bend(bend) {}
    CConverterPtr inverse() override { return std::make_shared<CBent>(-m_Bend); }
    double convert(double x) const override { return x / (1.0 + m_Bend * x); }
    double derivative(double x) const override {
        return 1.0 / ((1.0 + m_Bend * x) * (1.0 + m_Bend * x));
    }
    bool isLinear() const override { return false; }

private:
    double m_Bend;
};

/// Adds 1 and logs each call as "name.function".
class CLogged : public CConverter {
public:
    using Log = std::vector<std::string>;

    CLogged(std::string name, Log& log) : m_Name(std::move(name)), m_Log(log) {}
    CConverterPtr inverse() override {
        write("inverse");
        return std::make_shared<CLogged>(m_Name + "'", m_Log);
    }
    double convert(double x) const override {
        write("convert");
        return x + 1;
    }
    double derivative(double) const override {
        write("derivative");
        return 1;
    }
    bool isLinear() const override {
        write("isLinear");
        return IsLinear;
    }
    bool equals(CConverterPtr) const override {
        write("equals");
        return Equals;
    }

    bool IsLinear = true;
    bool Equals = true;

private:
    void write(const char* member) const { m_Log.push_back(m_Name + "." + member); }

    std::string m_Name;
    Log& m_Log;
};

}  // namespace mensor

#endif  // MENSOR_TESTS_CLIENTCONVERTERS_H
