// Bit and data helpers: fields against a bit-by-bit reference, bit ranges,
// the TCAM x/y form, numbers and text, sort, queue, stack and timeout.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <random>
#include <vector>

#include "sal/linux_um/xsal_int.h"
#include "shared/shr_int.h"
#include "support/fixture.h"
#include "support/wait.h"

using tide::bits::field_get;
using tide::bits::field_set;
using tide::test::Capture;

namespace {

// Plain bit access of an image, the reference of the helpers under test.
u64 ref_get(const std::vector<u8> &d, u32 start, u32 width)
{
    u64 v = 0;
    for (u32 i = 0; i < width; i++) {
        v |= static_cast<u64>((d[(start + i) / 8] >> ((start + i) % 8)) & 1u) << i;
    }
    return v;
}

void ref_set(std::vector<u8> &d, u32 start, u32 width, u64 value)
{
    for (u32 i = 0; i < width; i++) {
        const u32 n = start + i;
        d[n / 8] = static_cast<u8>((d[n / 8] & ~(1u << (n % 8))) | (((value >> i) & 1u) << (n % 8)));
    }
}

// Installs the log capture for one test and puts the default sink back.
class Bits : public ::testing::Test {
protected:
    void SetUp() override
    {
        Capture::clear();
        shr_debug_base_printf_func_set(Capture::log_sink);
    }
    void TearDown() override { shr_debug_base_printf_func_set(nullptr); }
    tide_test::FixtureSeed seed_{0x7e1de};
    std::mt19937_64 rng_{seed_.value};
};

template <typename T>
class BitsTyped : public Bits {};
using Widths = ::testing::Types<u8, u16, u32, u64>;
TYPED_TEST_SUITE(BitsTyped, Widths);

// Random fields at every start 0..63 on a random image: the image after set
// is the reference's, and get gives the value back.
TYPED_TEST(BitsTyped, SetThenGetMatchesBitReference)
{
    using T = TypeParam;
    constexpr u32 bits = sizeof(T) * 8;
    for (u32 start = 0; start < 64; start++) {
        for (int round = 0; round < 20; round++) {
            const u32 width = static_cast<u32>(this->rng_() % (bits + 1));
            std::vector<u8> data(16);
            for (u8 &b : data) {
                b = static_cast<u8>(this->rng_());
            }
            const u64 max = width == 64 ? ~0ull : (1ull << width) - 1;
            const T value = static_cast<T>(this->rng_() & max);
            std::vector<u8> want = data;
            ref_set(want, start, width, value);
            ASSERT_EQ(field_set<T>(data.data(), value, static_cast<u16>(start), static_cast<u16>(width)), 0);
            ASSERT_EQ(data, want) << "start " << start << " width " << width;
            T out = static_cast<T>(~T{0});
            ASSERT_EQ(field_get<T>(data.data(), &out, static_cast<u16>(start), static_cast<u16>(width)), 0);
            ASSERT_EQ(static_cast<u64>(out), static_cast<u64>(value)) << "start " << start << " width " << width;
        }
    }
}

// A field that ends on the last byte of an allocation of exactly that size:
// touching one byte more is caught by the address sanitizer.
TYPED_TEST(BitsTyped, FieldEndingAtAByteEndTouchesNoFurtherByte)
{
    using T = TypeParam;
    constexpr u32 bits = sizeof(T) * 8;
    for (u32 shift = 0; shift < 8; shift++) {
        for (u32 width = 1; width <= bits; width++) {
            if ((shift + width) % 8 != 0) {
                continue;
            }
            const u32 bytes = (shift + width) / 8;
            auto data = std::make_unique<u8[]>(bytes);
            std::memset(data.get(), 0xA5, bytes);
            const T value = static_cast<T>(width == 64 ? ~0ull : (1ull << width) - 1);
            ASSERT_EQ(field_set<T>(data.get(), value, static_cast<u16>(shift), static_cast<u16>(width)), 0);
            T out = 0;
            ASSERT_EQ(field_get<T>(data.get(), &out, static_cast<u16>(shift), static_cast<u16>(width)), 0);
            EXPECT_EQ(out, value);
            EXPECT_EQ(data[0] & ((1u << shift) - 1), 0xA5u & ((1u << shift) - 1));
        }
    }
}

TYPED_TEST(BitsTyped, RefusesWithoutChangingTheData)
{
    using T = TypeParam;
    constexpr u16 bits = sizeof(T) * 8;
    u8 data[16];
    std::memset(data, 0x5A, sizeof data);
    const std::vector<u8> before(data, data + sizeof data);
    // One above the largest value of a 4-bit field.
    EXPECT_EQ(field_set<T>(data, 16, 3, 4), -23);
    EXPECT_TRUE(Capture::has("field(bits=4) max value=0xf\n"));
    // A field wider than the type.
    EXPECT_EQ(field_set<T>(data, 0, 0, bits + 1), -4);
    T out = 7;
    EXPECT_EQ(field_get<T>(data, &out, 0, bits + 1), -4);
    EXPECT_EQ(std::vector<u8>(data, data + sizeof data), before);
    // Width 0 takes only the value 0 and reads as 0.
    EXPECT_EQ(field_set<T>(data, 1, 5, 0), -23);
    EXPECT_EQ(field_set<T>(data, 0, 5, 0), 0);
    EXPECT_EQ(field_get<T>(data, &out, 5, 0), 0);
    EXPECT_EQ(out, 0);
    EXPECT_EQ(std::vector<u8>(data, data + sizeof data), before);

    Capture::clear();
    EXPECT_EQ(field_set<T>(nullptr, 0, 0, 1), -20);
    EXPECT_EQ(field_get<T>(data, nullptr, 0, 1), -20);
    EXPECT_TRUE(Capture::has("data is NULL\n"));
    EXPECT_TRUE(Capture::has("data or fdata is NULL\n"));
    for (const auto &line : Capture::lines()) {
        EXPECT_EQ(line.chip, -1);
        EXPECT_EQ(line.module, 56u);
    }
}

TEST_F(Bits, Field8TouchesTheSecondByteOnlyWhereTheFieldIs)
{
    u8 d[2] = {0, 0};
    ASSERT_EQ(shr_field8_set_to_data(d, 3, 6, 4), 0);
    EXPECT_EQ(d[0], 0xC0);
    EXPECT_EQ(d[1], 0x00);
    ASSERT_EQ(shr_field8_set_to_data(d, 0xF, 6, 4), 0);
    EXPECT_EQ(d[0], 0xC0);
    EXPECT_EQ(d[1], 0x03);
    // Clearing keeps the neighbours.
    u8 e[2] = {0xFF, 0xFF};
    ASSERT_EQ(shr_field8_set_to_data(e, 0, 6, 4), 0);
    EXPECT_EQ(e[0], 0x3F);
    EXPECT_EQ(e[1], 0xFC);
}

TEST_F(Bits, Field64IsTwo32BitHalves)
{
    std::vector<u8> d(8, 0);
    ASSERT_EQ(shr_field64_set_to_data(d.data(), 0xAB12345678ull, 4, 40), 0);
    EXPECT_EQ(ref_get(d, 4, 32), 0x12345678u);
    EXPECT_EQ(ref_get(d, 36, 8), 0xABu);
    EXPECT_EQ(ref_get(d, 0, 4), 0u);
    EXPECT_EQ(ref_get(d, 44, 20), 0u);
    u64 out = 0;
    ASSERT_EQ(shr_field64_get_from_data(d.data(), &out, 4, 40), 0);
    EXPECT_EQ(out, 0xAB12345678ull);
    EXPECT_EQ(shr_field64_set_to_data(d.data(), 1ull << 40, 4, 40), -23);
    EXPECT_TRUE(Capture::has("input fdata=0x10000000000, field(bits=40) max value=0xffffffffff\n"));
}

TEST_F(Bits, MaxValueOfAWidth)
{
    EXPECT_EQ(shr_bitwidth_max_value_get(1), 1u);
    EXPECT_EQ(shr_bitwidth_max_value_get(64), ~0ull);
    EXPECT_EQ(shr_bitwidth_max_value_get(0), 0u);
    EXPECT_EQ(shr_bitwidth_max_value_get(65), 0u);
    EXPECT_TRUE(Capture::has("index(65) error !!!\n"));
}

// ---- untyped fields and bit ranges -----------------------------------------

TEST_F(Bits, UntypedFieldsMatchTheReference)
{
    for (int round = 0; round < 200; round++) {
        const u32 start = static_cast<u32>(rng_() % 100);
        const u32 width = static_cast<u32>(rng_() % 100);
        std::vector<u8> data(32);
        std::vector<u8> value(16);
        for (u8 &b : data) {
            b = static_cast<u8>(rng_());
        }
        for (u8 &b : value) {
            b = static_cast<u8>(rng_());
        }
        std::vector<u8> want = data;
        for (u32 i = 0; i < width; i++) {
            ref_set(want, start + i, 1, ref_get(value, i, 1));
        }
        ASSERT_EQ(shr_field_set_to_data(data.data(), value.data(), static_cast<int32_t>(width),
                                        static_cast<int32_t>(start)),
                  0);
        ASSERT_EQ(data, want);
        std::vector<u8> out(16, 0);
        ASSERT_EQ(shr_field_get_from_data(data.data(), out.data(), static_cast<int32_t>(width),
                                          static_cast<int32_t>(start)),
                  0);
        for (u32 i = 0; i < 128; i++) {
            ASSERT_EQ(ref_get(out, i, 1), i < width ? ref_get(value, i, 1) : 0u) << i;
        }
    }
}

TEST_F(Bits, UntypedGetOrsIntoTheOutputAndRefusesNull)
{
    const u8 data[2] = {0x0F, 0x00};
    u8 out[2] = {0xF0, 0x80};
    ASSERT_EQ(shr_field_get_from_data(data, out, 8, 0), 0);
    EXPECT_EQ(out[0], 0xFF);
    EXPECT_EQ(out[1], 0x80);
    u8 d[2] = {0xAA, 0xAA};
    EXPECT_EQ(shr_field_set_to_data(d, out, 0, 3), 0);
    EXPECT_EQ(d[0], 0xAA);
    EXPECT_EQ(shr_field_set_to_data(d, nullptr, 1, 0), -4);
    EXPECT_EQ(shr_field_get_from_data(data, out, 1, -1), -4);
}

TEST_F(Bits, CopyByBitsInsideOneImageEitherWay)
{
    // Moving up by 4 bits: the copy must read each bit before it is written.
    u8 d[2] = {0xB7, 0x00};
    ASSERT_EQ(shr_data_copy_by_bits(d, 4, d, 0, 8), 0);
    EXPECT_EQ(d[0], 0x77);
    EXPECT_EQ(d[1], 0x0B);
    // Moving down by 3 bits over itself.
    std::vector<u8> img = {0x12, 0x34, 0x56, 0x78};
    const u64 before = ref_get(img, 3, 24);
    ASSERT_EQ(shr_data_copy_by_bits(img.data(), 0, img.data(), 3, 24), 0);
    EXPECT_EQ(ref_get(img, 0, 24), before);
    EXPECT_EQ(ref_get(img, 24, 8), 0x78u);
    EXPECT_EQ(shr_data_copy_by_bits(d, 0, nullptr, 0, 1), -20);
}

TEST_F(Bits, CompareByBits)
{
    const u8 a[2] = {0xF0, 0x0F}; // bits 4..11 set
    const u8 b[2] = {0xFF, 0x01};
    EXPECT_EQ(shr_data_compare_by_bits(a, 4, b, 0, 8), 1u);
    EXPECT_EQ(shr_data_compare_by_bits(a, 3, b, 0, 8), 0u);
    EXPECT_EQ(shr_data_compare_by_bits(a, 4, b, 0, 9), 0u);
    EXPECT_EQ(shr_data_compare_by_bits(a, 0, b, 0, 0), 1u);
    EXPECT_EQ(shr_data_compare_by_bits(nullptr, 0, b, 0, 0), 1u);
    EXPECT_EQ(shr_data_compare_by_bits(nullptr, 0, b, 0, 1), 0u);
}

TEST_F(Bits, BitsArrayParityAndWidths)
{
    const u8 data[3] = {0x81, 0x02, 0xFF};
    u8 out[20];
    std::memset(out, 9, sizeof out);
    // Room for two bytes only: the third is not written, nor the tail.
    ASSERT_EQ(shr_data_to_bits_array(data, 3, out, 20), 0);
    const u8 want[16] = {1, 0, 0, 0, 0, 0, 0, 1, 0, 1, 0, 0, 0, 0, 0, 0};
    EXPECT_EQ(std::memcmp(out, want, 16), 0);
    EXPECT_EQ(out[16], 9);

    // Parity of the first n bits: the partial last byte counts only its
    // low bits.
    const u32 parity[] = {0, 1, 1, 1, 1, 1, 1, 1, 0, 0, 1};
    for (u16 n = 0; n <= 10; n++) {
        EXPECT_EQ(shr_even_parity_calc(data, n), parity[n]) << n;
    }
    EXPECT_EQ(shr_even_parity_calc(data, 24), 1u);

    EXPECT_EQ(shr_data_bitwidth_get(0), 0u);
    EXPECT_EQ(shr_data_bitwidth_get(1ull << 63), 64u);
    EXPECT_EQ(shr_buf_bitwidth_get(data, 2), 10u);
}

// ---- TCAM form ----------------------------------------------------------------

TEST_F(Bits, TcamKeyMaskAndXy)
{
    u8 key = 0b1010;
    u8 mask = 0b1100;
    u8 x = 0;
    u8 y = 0;
    ASSERT_EQ(shr_tcam_keymask_to_xy(&key, &mask, &x, &y, 1), 0);
    EXPECT_EQ(x, 0b0100);
    EXPECT_EQ(y, 0b1000);
    ASSERT_EQ(shr_tcam_xy_to_keymask(&key, &mask, &x, &y, 1), 0);
    EXPECT_EQ(key, 0b1000); // the masked-out key bit does not come back
    EXPECT_EQ(mask, 0b1100);

    // In place: x over the key, y over the mask.
    u8 k[4] = {0x12, 0x34, 0x56, 0x78};
    u8 m[4] = {0xFF, 0x0F, 0xF0, 0x00};
    ASSERT_EQ(shr_tcam_keymask_to_xy(k, m, k, m, 4), 0);
    const u8 wx[4] = {0xED, 0x0B, 0xA0, 0x00};
    const u8 wy[4] = {0x12, 0x04, 0x50, 0x00};
    EXPECT_EQ(std::memcmp(k, wx, 4), 0);
    EXPECT_EQ(std::memcmp(m, wy, 4), 0);

    EXPECT_EQ(shr_tcam_keymask_to_xy(nullptr, &mask, &x, &y, 1), -20);
    EXPECT_EQ(shr_tcam_xy_to_keymask(&key, &mask, &x, nullptr, 1), -20);
}

// ---- numbers and text ------------------------------------------------------------

TEST_F(Bits, Ipv4PrefixLength)
{
    EXPECT_EQ(shr_ipv4_prefix_len_get(0xFFFFFF00), 24u);
    EXPECT_EQ(shr_ipv4_prefix_len_get(0xFFFFFFFF), 32u);
    EXPECT_EQ(shr_ipv4_prefix_len_get(0x80000000), 1u);
    EXPECT_EQ(shr_ipv4_prefix_len_get(0), 0u);
    EXPECT_EQ(shr_ipv4_prefix_len_get(0xFF00FF00), 255u);
    EXPECT_EQ(shr_ipv4_prefix_len_get(0x7FFFFFFF), 255u);
    EXPECT_EQ(shr_ipv4_prefix_len_get(1), 255u);
    EXPECT_TRUE(Capture::has("invalid parameter: ip_addr_mask 0xFF00FF00\n"));
}

TEST_F(Bits, NumberStrings)
{
    const struct {
        const char *text;
        u32 is_num;
        int64_t value;
    } rows[] = {
        {"0", 1, 0},
        {"42", 1, 42},
        {"0x10", 1, 16},
        {"0XaBcD", 1, 0xABCD},
        {"007", 1, 7},
        {"18446744073709551615", 1, -1}, // 2^64 - 1: its bit pattern
        {"9223372036854775807", 1, INT64_MAX},
        {"18446744073709551616", 1, -1}, // overflow
        {"0x10000000000000000", 1, -1},  // overflow
        {"12g", 0, -1},
        {"1a", 0, -1},
        {"0x", 0, -1},
        {"", 0, -1},
        {"-1", 0, -1},
        {" 1", 0, -1},
        {"0x1G", 0, -1},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(shr_is_num_string(row.text), row.is_num) << row.text;
        EXPECT_EQ(shr_string_num_get(row.text), row.value) << row.text;
    }
    EXPECT_EQ(shr_is_num_string(nullptr), 0u);
    EXPECT_EQ(shr_string_num_get(nullptr), -1);
}

TEST_F(Bits, DataPrintEightBytesALine)
{
    const u8 data[10] = {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF, 0x0A, 0xFF};
    ::testing::internal::CaptureStdout();
    EXPECT_EQ(shr_data_print(data, 10, "key"), 0);
    EXPECT_EQ(shr_data_print(data, 8, nullptr), 0);
    const std::string out = ::testing::internal::GetCapturedStdout();
    EXPECT_EQ(out, "key: data\n01 23 45 67 89 AB CD EF \b\n0A FF \b\n"
                   ": data\n01 23 45 67 89 AB CD EF \b\n");
    EXPECT_EQ(shr_data_print(nullptr, 4, "x"), -4);
    EXPECT_EQ(shr_data_print(data, 0, "x"), -4);
    EXPECT_EQ(Capture::count("invalid parameter\n"), 2u);
}

// ---- sort, queue, stack ---------------------------------------------------------

int32_t cmp_u32(const void *a, const void *b)
{
    u32 x = 0;
    u32 y = 0;
    std::memcpy(&x, a, 4);
    std::memcpy(&y, b, 4);
    return x < y ? -1 : x > y ? 1 : 0;
}

int32_t cmp_bytes3(const void *a, const void *b)
{
    return std::memcmp(a, b, 3);
}

int g_swaps;
void counting_swap(void *a, void *b, u64 size)
{
    g_swaps++;
    shr_generic_swap(a, b, size);
}

TEST_F(Bits, HeapSortOrdersLikeStdSort)
{
    for (int64_t n : {0, 1, 2, 3, 7, 64, 1000}) {
        std::vector<u32> v(static_cast<size_t>(n));
        for (u32 &x : v) {
            x = static_cast<u32>(rng_() % 50); // with repeats
        }
        std::vector<u32> want = v;
        std::sort(want.begin(), want.end());
        ASSERT_EQ(shr_sort(v.data(), n, 4, cmp_u32, nullptr), 0);
        EXPECT_EQ(v, want) << n;
    }
    // Elements of 3 bytes go through the generic swap.
    std::vector<u8> r(3 * 100);
    for (u8 &b : r) {
        b = static_cast<u8>(rng_() % 4);
    }
    ASSERT_EQ(shr_sort(r.data(), 100, 3, cmp_bytes3, nullptr), 0);
    for (size_t i = 1; i < 100; i++) {
        EXPECT_LE(std::memcmp(&r[3 * (i - 1)], &r[3 * i], 3), 0);
    }
    // A given swap is the one used.
    std::vector<u32> s = {3, 1, 2};
    g_swaps = 0;
    ASSERT_EQ(shr_sort(s.data(), 3, 4, cmp_u32, counting_swap), 0);
    EXPECT_GT(g_swaps, 0);
    EXPECT_EQ(s, (std::vector<u32>{1, 2, 3}));
    EXPECT_EQ(shr_sort(s.data(), 2, 4, nullptr, nullptr), -4);
}

struct Item {
    shr_queue_node node; // first, so a node is its item
    int key;
    int order;
};

int32_t cmp_item(shr_queue_node *a, shr_queue_node *b)
{
    return reinterpret_cast<Item *>(a)->key - reinterpret_cast<Item *>(b)->key;
}

// A circular queue of the items, in vector order.
void link(shr_queue_node *head, std::vector<Item> &items)
{
    head->next = head->prev = head;
    for (Item &it : items) {
        it.node.prev = head->prev;
        it.node.next = head;
        head->prev->next = &it.node;
        head->prev = &it.node;
    }
}

std::vector<Item *> walk(shr_queue_node *head)
{
    std::vector<Item *> v;
    for (shr_queue_node *n = head->next; n != head; n = n->next) {
        EXPECT_EQ(n->next->prev, n);
        v.push_back(reinterpret_cast<Item *>(n));
    }
    return v;
}

TEST_F(Bits, QueueSortIsStable)
{
    for (int n : {0, 1, 2, 5, 40}) {
        std::vector<Item> items(static_cast<size_t>(n));
        for (int i = 0; i < n; i++) {
            items[static_cast<size_t>(i)] = Item{{}, static_cast<int>(rng_() % 5), i};
        }
        shr_queue_node head;
        link(&head, items);
        shr_queue_sort(&head, cmp_item);
        const std::vector<Item *> v = walk(&head);
        ASSERT_EQ(v.size(), static_cast<size_t>(n));
        for (size_t i = 1; i < v.size(); i++) {
            ASSERT_LE(v[i - 1]->key, v[i]->key);
            if (v[i - 1]->key == v[i]->key) {
                ASSERT_LT(v[i - 1]->order, v[i]->order);
            }
        }
        if (n > 0) {
            EXPECT_EQ(head.prev, &v.back()->node);
        }
    }
}

TEST_F(Bits, QueueMiddle)
{
    shr_queue_node head;
    std::vector<Item> none;
    link(&head, none);
    EXPECT_EQ(shr_queue_middle(&head), &head);
    EXPECT_EQ(shr_queue_middle(nullptr), nullptr);
    for (int n = 1; n <= 8; n++) {
        std::vector<Item> items(static_cast<size_t>(n));
        link(&head, items);
        // Of n the (n + 1) / 2-th: the last of the first half when even.
        EXPECT_EQ(shr_queue_middle(&head), &items[static_cast<size_t>((n + 1) / 2 - 1)].node) << n;
    }
}

TEST_F(Bits, StackIsLastInFirstOutAndBounded)
{
    EXPECT_EQ(shr_stack_create(0), nullptr);
    shr_stack *s = shr_stack_create(2);
    ASSERT_NE(s, nullptr);
    int a = 0;
    int b = 0;
    int c = 0;
    EXPECT_EQ(shr_stack_pop(s), nullptr);
    EXPECT_EQ(shr_stack_push(s, &a), 0);
    EXPECT_EQ(shr_stack_push(s, &b), 0);
    EXPECT_EQ(shr_stack_push(s, &c), -6);
    EXPECT_EQ(shr_stack_push(s, nullptr), -4);
    EXPECT_EQ(shr_stack_push(nullptr, &a), -4);
    // Destroying a stack that holds something keeps it.
    EXPECT_EQ(shr_stack_destroy(s), -10);
    EXPECT_EQ(shr_stack_pop(s), &b);
    EXPECT_EQ(shr_stack_pop(s), &a);
    EXPECT_EQ(shr_stack_pop(s), nullptr);
    EXPECT_EQ(shr_stack_pop(nullptr), nullptr);
    EXPECT_EQ(shr_stack_destroy(s), 0);
    EXPECT_EQ(shr_stack_destroy(nullptr), -4);
}

// ---- timeout ----------------------------------------------------------------------

TEST_F(Bits, TimeoutFreePollsThenClock)
{
    shr_timeout to;
    ASSERT_EQ(shr_timeout_init(&to, 1000000, 3), 0);
    EXPECT_EQ(to.polls, 1);
    EXPECT_EQ(to.exp_delay, 1u);
    // First call: a free poll, the clock is not started.
    EXPECT_EQ(shr_timeout_check(&to), 0);
    EXPECT_EQ(to.min_polls, 3);
    EXPECT_EQ(to.expire, 0u);
    EXPECT_EQ(shr_timeout_elapsed(&to), 0u);
    // Second call: the clock starts.
    const u64 before = xsal_time_usecs();
    EXPECT_EQ(shr_timeout_check(&to), 0);
    const u64 after = xsal_time_usecs();
    EXPECT_EQ(to.min_polls, -1);
    EXPECT_GE(to.expire, before + 1000000);
    EXPECT_LE(to.expire, after + 1000000);
    EXPECT_TRUE(Capture::has("to->usec = 1000000\n"));
    EXPECT_TRUE(Capture::has("to->expire = "));
    for (const auto &line : Capture::lines()) {
        EXPECT_EQ(line.module, 54u);
        EXPECT_EQ(line.level, SHR_LOG_WARN);
    }
    // A count of free polls beyond the signed range is the largest one.
    ASSERT_EQ(shr_timeout_init(&to, 1, 0xFFFFFFFFu), 0);
    EXPECT_EQ(to.min_polls, INT32_MAX);
    EXPECT_EQ(shr_timeout_check(&to), 0);
    EXPECT_EQ(to.min_polls, INT32_MAX);
    EXPECT_EQ(shr_timeout_init(nullptr, 1, 1), -4);
    EXPECT_NE(shr_timeout_check(nullptr), 0);
}

TEST_F(Bits, TimeoutBackOffDoublesUpToAnEighth)
{
    shr_timeout to;
    // 1.6 s: the delays sleep 1, 2, 4 .. 131072 us (0.26 s in all), then
    // the next doubling is cut to 200000.  The end is moved an hour on, so
    // that a slow machine does not run out of the time before the cut.
    ASSERT_EQ(shr_timeout_init(&to, 1600000, 0), 0);
    ASSERT_EQ(shr_timeout_check(&to), 0); // clock starts
    to.expire += 3600ull * 1000000;
    u64 want = 1;
    for (int i = 0; i < 18; i++) {
        ASSERT_EQ(shr_timeout_check(&to), 0);
        want = std::min<u64>(want * 2, 200000);
        ASSERT_EQ(to.exp_delay, want) << i;
    }
    EXPECT_EQ(to.exp_delay, 200000u);
    EXPECT_TRUE(Capture::has("to->exp_delay = 200000\n"));
}

TEST_F(Bits, TimeoutRunsOut)
{
    shr_timeout to;
    ASSERT_EQ(shr_timeout_init(&to, 2000, 2), 0);
    int polls = 0;
    while (shr_timeout_check(&to) == 0) {
        ASSERT_LT(++polls, 100000);
    }
    EXPECT_GE(shr_timeout_elapsed(&to), 2000u);
    EXPECT_TRUE(Capture::has("shr_timeout_check exit cost "));
    // Once out, it stays out.
    EXPECT_EQ(shr_timeout_check(&to), 1);
}

} // namespace
