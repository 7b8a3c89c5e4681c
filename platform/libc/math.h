// The functions that libc++'s <math.h> and <cmath> insist on, in their three widths. None is on an import list: calling
// one that the compiler does not turn into an instruction fails at the link.
#pragma once

typedef float float_t;
typedef double double_t;

#define FP_NAN 1
#define FP_INFINITE 2
#define FP_ZERO 3
#define FP_NORMAL 4
#define FP_SUBNORMAL 5

#define fpclassify(x) __builtin_fpclassify(FP_NAN, FP_INFINITE, FP_NORMAL, FP_SUBNORMAL, FP_ZERO, x)
#define isfinite(x) __builtin_isfinite(x)
#define isgreater(x, y) __builtin_isgreater(x, y)
#define isgreaterequal(x, y) __builtin_isgreaterequal(x, y)
#define isinf(x) __builtin_isinf(x)
#define isless(x, y) __builtin_isless(x, y)
#define islessequal(x, y) __builtin_islessequal(x, y)
#define islessgreater(x, y) __builtin_islessgreater(x, y)
#define isnan(x) __builtin_isnan(x)
#define isnormal(x) __builtin_isnormal(x)
#define isunordered(x, y) __builtin_isunordered(x, y)
#define signbit(x) __builtin_signbit(x)

#if defined(__cplusplus)
extern "C" {
#endif

// Each pastes the names of one function's three widths: double, float and long double.
#define PLATFORM_MATH_1(name)                                                                                          \
    PLATFORM_MATH_1_AS(name, double) PLATFORM_MATH_1_AS(name##f, float) PLATFORM_MATH_1_AS(name##l, long double)
#define PLATFORM_MATH_1_AS(name, T) T name(T);
#define PLATFORM_MATH_2(name)                                                                                          \
    PLATFORM_MATH_2_AS(name, double) PLATFORM_MATH_2_AS(name##f, float) PLATFORM_MATH_2_AS(name##l, long double)
#define PLATFORM_MATH_2_AS(name, T) T name(T, T);
#define PLATFORM_MATH_3(name)                                                                                          \
    PLATFORM_MATH_3_AS(name, double) PLATFORM_MATH_3_AS(name##f, float) PLATFORM_MATH_3_AS(name##l, long double)
#define PLATFORM_MATH_3_AS(name, T) T name(T, T, T);
#define PLATFORM_MATH_TO(R, name)                                                                                      \
    PLATFORM_MATH_TO_AS(R, name, double)                                                                               \
    PLATFORM_MATH_TO_AS(R, name##f, float) PLATFORM_MATH_TO_AS(R, name##l, long double)
#define PLATFORM_MATH_TO_AS(R, name, T) R name(T);
#define PLATFORM_MATH_WITH(A, name)                                                                                    \
    PLATFORM_MATH_WITH_AS(A, name, double)                                                                             \
    PLATFORM_MATH_WITH_AS(A, name##f, float) PLATFORM_MATH_WITH_AS(A, name##l, long double)
#define PLATFORM_MATH_WITH_AS(A, name, T) T name(T, A);

PLATFORM_MATH_1(acos)
PLATFORM_MATH_1(acosh)
PLATFORM_MATH_1(asin)
PLATFORM_MATH_1(asinh)
PLATFORM_MATH_1(atan)
PLATFORM_MATH_1(atanh)
PLATFORM_MATH_1(cbrt)
PLATFORM_MATH_1(ceil)
PLATFORM_MATH_1(cos)
PLATFORM_MATH_1(cosh)
PLATFORM_MATH_1(erf)
PLATFORM_MATH_1(erfc)
PLATFORM_MATH_1(exp)
PLATFORM_MATH_1(exp2)
PLATFORM_MATH_1(expm1)
PLATFORM_MATH_1(fabs)
PLATFORM_MATH_1(floor)
PLATFORM_MATH_1(lgamma)
PLATFORM_MATH_1(log)
PLATFORM_MATH_1(log10)
PLATFORM_MATH_1(log1p)
PLATFORM_MATH_1(log2)
PLATFORM_MATH_1(logb)
PLATFORM_MATH_1(nearbyint)
PLATFORM_MATH_1(rint)
PLATFORM_MATH_1(round)
PLATFORM_MATH_1(sin)
PLATFORM_MATH_1(sinh)
PLATFORM_MATH_1(sqrt)
PLATFORM_MATH_1(tan)
PLATFORM_MATH_1(tanh)
PLATFORM_MATH_1(tgamma)
PLATFORM_MATH_1(trunc)

PLATFORM_MATH_2(atan2)
PLATFORM_MATH_2(copysign)
PLATFORM_MATH_2(fdim)
PLATFORM_MATH_2(fmax)
PLATFORM_MATH_2(fmin)
PLATFORM_MATH_2(fmod)
PLATFORM_MATH_2(hypot)
PLATFORM_MATH_2(nextafter)
PLATFORM_MATH_2(pow)
PLATFORM_MATH_2(remainder)

PLATFORM_MATH_3(fma)

PLATFORM_MATH_TO(int, ilogb)
PLATFORM_MATH_TO(long, lrint)
PLATFORM_MATH_TO(long, lround)
PLATFORM_MATH_TO(long long, llrint)
PLATFORM_MATH_TO(long long, llround)

PLATFORM_MATH_WITH(int *, frexp)
PLATFORM_MATH_WITH(int, ldexp)
PLATFORM_MATH_WITH(int, scalbn)
PLATFORM_MATH_WITH(long, scalbln)
PLATFORM_MATH_WITH(long double, nexttoward)

double modf(double, double *);
float modff(float, float *);
long double modfl(long double, long double *);
double nan(const char *);
float nanf(const char *);
long double nanl(const char *);
double remquo(double, double, int *);
float remquof(float, float, int *);
long double remquol(long double, long double, int *);

#undef PLATFORM_MATH_1
#undef PLATFORM_MATH_1_AS
#undef PLATFORM_MATH_2
#undef PLATFORM_MATH_2_AS
#undef PLATFORM_MATH_3
#undef PLATFORM_MATH_3_AS
#undef PLATFORM_MATH_TO
#undef PLATFORM_MATH_TO_AS
#undef PLATFORM_MATH_WITH
#undef PLATFORM_MATH_WITH_AS

#if defined(__cplusplus)
}
#endif
