#include "dataflow/CircularBuffer.h"

#include <gtest/gtest.h>

#include <numeric>
#include <vector>

#include "dataflow/CircularBufferBus.h"

using TalvernQuell::CircularBuffer;
using TalvernQuell::CircularBufferBus;
using TalvernQuell::CircularBufferBusT;

using Samples = std::vector<double>;

static void AttachAt(CircularBuffer<double>& buffer, Samples& samples, std::uint64_t position)
{
    buffer.Attach(samples.data(), samples.size());
    buffer.m_Position = position;
}

static const struct {
    const char* label;
    std::uint64_t position, sourceOffset;          // in a source of 0..7
    std::uint64_t capacity, toPosition, toOffset;  // of a destination of -1
    std::uint64_t count;
    Samples expected;
} copies[] = {
    {"across the end of the source", 6, 0, 6, 0, 0, 5, {6, 7, 0, 1, 2, -1}},
    {"across the end of both", 6, 0, 6, 4, 0, 5, {0, 1, 2, -1, 6, 7}},
    {"the offset wraps", 6, 3, 3, 2, 2, 2, {-1, 1, 2}},
    {"ends exactly at both ends", 5, 0, 4, 1, 0, 3, {-1, 5, 6, 7}},
    {"starts at the end of the run", 7, 0, 3, 2, 0, 2, {0, -1, 7}},
    {"one element", 7, 1, 2, 1, 0, 1, {-1, 0}},
    {"none", 3, 0, 2, 0, 0, 0, {-1, -1}},
    {"a full turn of both", 3, 0, 8, 5, 0, 8, {6, 7, 0, 1, 2, 3, 4, 5}},
};

GTEST_TEST(CircularBuffer, CopiesWithWrapInBoth)
{
    Samples numbers(8);
    std::iota(numbers.begin(), numbers.end(), 0.0);
    for (const auto& row : copies) {
        CircularBuffer<double> source;
        CircularBuffer<double> destination;
        Samples result(row.capacity, -1.0);
        AttachAt(source, numbers, row.position);
        AttachAt(destination, result, row.toPosition);
        source.Copy(row.sourceOffset, &destination, row.toOffset, row.count);
        EXPECT_EQ(result, row.expected) << row.label;
        EXPECT_EQ(destination.m_Position, row.toPosition) << row.label;
    }
}

GTEST_TEST(CircularBuffer, ZeroWrapsAndIgnoresTheArrayItIsGiven)
{
    CircularBuffer<double> buffer;
    Samples samples = {1, 2, 3, 4, 5};
    Samples other = {9, 9, 9, 9, 9};
    AttachAt(buffer, samples, 3);
    EXPECT_TRUE(buffer.Zero(1, 3, other.data()));
    EXPECT_EQ(samples, (Samples{0, 0, 3, 4, 0}));
    EXPECT_EQ(other, Samples(5, 9));
}

GTEST_TEST(CircularBuffer, DeallocatesTheGivenArrayOrItsOwn)
{
    CircularBuffer<int> buffer;
    buffer.Grow(3);
    buffer.m_Position = 2;
    const void* const own = buffer.m_Data;
    buffer.DeallocateMemory(buffer.AllocateMemory(4));
    EXPECT_EQ(buffer.m_Data, own);
    EXPECT_EQ(buffer.m_Position, 2U);
    EXPECT_EQ(buffer.m_Capacity, 3U);
    for (int i = 0; i < 2; ++i) {
        buffer.DeallocateMemory(nullptr);
        EXPECT_EQ(buffer.m_Data, nullptr);
        EXPECT_EQ(buffer.m_Position, 0U);
        EXPECT_EQ(buffer.m_Capacity, 0U);
    }
}

GTEST_TEST(CircularBuffer, GrowsToZerosAndOtherwiseKeepsWhatItHas)
{
    CircularBuffer<double> buffer;
    buffer.Grow(2);
    buffer.Elements()[0] = 1.0;
    buffer.Elements()[1] = 2.0;
    buffer.m_Position = 1;

    buffer.Grow(1);
    EXPECT_EQ(buffer.m_Size, 1U);
    EXPECT_EQ(buffer.m_Capacity, 2U);
    EXPECT_EQ(buffer.Current(), 2.0);

    buffer.Grow(3);
    EXPECT_EQ(buffer.m_Size, 3U);
    EXPECT_EQ(buffer.m_Capacity, 3U);
    EXPECT_EQ(buffer.m_Position, 0U);
    EXPECT_EQ(Samples(buffer.Elements(), buffer.Elements() + 3), Samples(3, 0.0));
    buffer.DeallocateMemory(nullptr);
}

GTEST_TEST(CircularBufferBus, KeepsItsBuffersOnlyWhenTheCountStays)
{
    CircularBufferBusT<CircularBuffer<double>> bus;
    CircularBufferBus& base = bus;
    base.Initialize(2);
    double sample = 0.0;
    bus.Get(1)->Attach(&sample, 1);
    base.Initialize(2);
    EXPECT_EQ(bus.Get(1)->m_Data, &sample);
    EXPECT_EQ(base.Get(1), bus.m_Buffers + 1);
    base.Initialize(3);
    EXPECT_EQ(bus.Get(1)->m_Data, nullptr);
    base.Initialize(0);
    EXPECT_EQ(bus.m_Buffers, nullptr);
    EXPECT_EQ(bus.m_Count, 0U);
}
