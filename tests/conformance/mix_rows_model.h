// The arithmetic of mixing, one row of bytes after the other, against which the library's is compared. Nothing here is shared
// with the library.
#pragma once

#include <cstdint>

namespace conformance {

// An opacity as a whole number of 1/128 or 1/256; no number counts as 0.
int32_t Opacity128Model(double opacity);
int32_t Opacity256Model(double opacity);

// a * b / 2^shift to the nearest whole number, ties to the even one, at most 255.
uint8_t TimesModel(int32_t a, int32_t b, int32_t shift);

// Where brightness lies in a 4:2:2 row.
enum class Order422 { LumaSecond, LumaFirst };    // UYVY and HDYC; YUY2 and YVYU

// Every row mixes `s` onto `d`. `n` counts pixels, `bytes` bytes.
void CopyRowModel(uint8_t *d, const uint8_t *s, int64_t bytes);
// Both sides are rounded, then added.
void ConstantRowModel(uint8_t *d, const uint8_t *s, int64_t bytes, int32_t a128);
// A row of three bytes a pixel under an alpha that is not multiplied into the colours; `alpha` has one byte a pixel.
void AlphaPairRowModel(uint8_t *d, const uint8_t *s, const uint8_t *alpha, int64_t n, int32_t a128);
// Over, on four bytes a pixel, the fourth of `s` being the alpha that its colours are multiplied by. The opacity counts
// `1 << shift` for solid.
void OverRowModel(uint8_t *d, const uint8_t *s, int64_t n, int32_t opacity, int32_t shift);
// Multiplied colours in 4:2:2 under a mask of one byte a pixel.
void Premultiplied422RowModel(uint8_t *d, const uint8_t *s, const uint8_t *k, int64_t n, int32_t a256, Order422 order);
// Colours in 4:2:2 that no mask is multiplied into.
void Masked422RowModel(uint8_t *d, const uint8_t *s, const uint8_t *k, int64_t n, int32_t a256, Order422 order);
// Without a mask.
void Plain422RowModel(uint8_t *d, const uint8_t *s, int64_t n, int32_t a256, Order422 order);
// Four bytes a pixel, multiplied by their mask.
void Masked4RowModel(uint8_t *d, const uint8_t *s, const uint8_t *k, int64_t n, int32_t a256);
// Four bytes a pixel without a mask: below solid only half of the row is mixed.
void Plain4RowModel(uint8_t *d, const uint8_t *s, int64_t n, int32_t a256);

}    // namespace conformance
