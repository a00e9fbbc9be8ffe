#include <fcntl.h>
#include <unistd.h>
#include <utility>

#include <gtest/gtest.h>

#include "ground/Descriptor.h"

using namespace quarrynet;

namespace {

bool isOpen(int number)
{
    return ::fcntl(number, F_GETFD) >= 0;
}

Descriptor nothing()
{
    return Descriptor(::open("/dev/null", O_RDONLY | O_CLOEXEC));
}

} // namespace

TEST(Descriptor, ClosesItself)
{
    int number = -1;
    {
        const Descriptor descriptor = nothing();
        ASSERT_TRUE(descriptor);
        number = descriptor.number();
        EXPECT_TRUE(isOpen(number));
    }
    EXPECT_FALSE(isOpen(number));
}

TEST(Descriptor, MovesAndClosesWhatItHeldBefore)
{
    Descriptor a = nothing();
    Descriptor b = nothing();
    const int first = a.number();
    const int second = b.number();
    a = std::move(b);
    EXPECT_EQ(a.number(), second);
    EXPECT_FALSE(b); // NOLINT(bugprone-use-after-move): it is empty
    EXPECT_FALSE(isOpen(first));
    EXPECT_TRUE(isOpen(second));
    Descriptor& itself = a;
    a = std::move(itself);
    EXPECT_EQ(a.number(), second);
}

TEST(Descriptor, CloseTellsWhetherItWorked)
{
    Descriptor descriptor = nothing();
    const int number = descriptor.number();
    EXPECT_TRUE(descriptor.close());
    EXPECT_FALSE(descriptor);
    EXPECT_FALSE(isOpen(number));
    EXPECT_FALSE(descriptor.close());
}

TEST(Descriptor, ReleasedOneStaysOpen)
{
    Descriptor descriptor = nothing();
    const Descriptor other(descriptor.release());
    EXPECT_FALSE(descriptor);
    EXPECT_TRUE(isOpen(other.number()));
}

TEST(MakePipe, EndsAreConnectedAndNotInherited)
{
    const std::optional<Pipe> pipe = makePipe();
    ASSERT_TRUE(pipe);
    EXPECT_EQ(::write(pipe->writeEnd.number(), "x", 1), 1);
    char c = 0;
    EXPECT_EQ(::read(pipe->readEnd.number(), &c, 1), 1);
    EXPECT_NE(::fcntl(pipe->readEnd.number(), F_GETFD) & FD_CLOEXEC, 0);
    EXPECT_NE(::fcntl(pipe->writeEnd.number(), F_GETFD) & FD_CLOEXEC, 0);
}

TEST(MakeSocketPair, EndsAreConnectedAndNotInherited)
{
    const std::optional<std::array<Descriptor, 2>> ends = makeSocketPair();
    ASSERT_TRUE(ends);
    EXPECT_EQ(::write((*ends)[0].number(), "x", 1), 1);
    char c = 0;
    EXPECT_EQ(::read((*ends)[1].number(), &c, 1), 1);
    for (const Descriptor& end : *ends)
        EXPECT_NE(::fcntl(end.number(), F_GETFD) & FD_CLOEXEC, 0);
}
