#include "Converter.h"

namespace {

struct Multiply : Converter {
    explicit Multiply(double factor) : Factor(factor) {}
    double convert(double x) const override { return x * Factor; }
    double Factor;
};

struct Fused : Converter {
    Fused(double head, double tail) : Head(head), Tail(tail) {}
#if defined(__x86_64__)
    [[gnu::target("fma")]]
#endif
    double
    convert(double x) const override {
        return __builtin_fma(Head, x, Tail * x);
    }
    double Head;
    double Tail;
};

}  // namespace

std::unique_ptr<Converter> makeMultiply(double factor) {
    return std::make_unique<Multiply>(factor);
}

std::unique_ptr<Converter> makeFused(double head, double tail) {
#if defined(__x86_64__)
    if (__builtin_cpu_supports("fma") == 0) {
        return nullptr;
    }
#endif
    return std::make_unique<Fused>(head, tail);
}
