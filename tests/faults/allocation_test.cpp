// The end of memory at every allocation of every family: the n-th alone, or it and all behind it.  Then
// std::bad_alloc comes through or a failure is reported, nothing has leaked, and the next call answers
// rightly.

#include <dirent.h>
#include <unistd.h>

#include <new>

#include "core/value_owner.h"
#include "tests/faults/families.h"

namespace {

struct Memory {
    long live = 0;       // blocks
    long countdown = 0;  // the allocation that fails, from 1; 0 lets all pass
    bool forever = false;
    long failed = 0;

    void failAt(long nth, bool andAllBehind = false) {
        countdown = nth;
        forever = andAllBehind;
    }
    bool mayAllocate() {
        if (countdown == 0 || --countdown > 0) return true;
        countdown = forever ? 1 : 0;
        ++failed;
        return false;
    }
} memory;

void* allocate(std::size_t bytes) {
    void* const block = memory.mayAllocate() ? std::malloc(bytes) : nullptr;
    memory.live += block == nullptr ? 0 : 1;
    return block;
}

void* allocateOrThrow(std::size_t bytes) {
    void* const block = allocate(bytes);
    return block == nullptr ? throw std::bad_alloc() : block;
}

void release(void* block) {
    memory.live -= block == nullptr ? 0 : 1;
    std::free(block);
}

}  // namespace

void* operator new(std::size_t bytes) {
    return allocateOrThrow(bytes);
}
void* operator new[](std::size_t bytes) {
    return allocateOrThrow(bytes);
}
void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept {
    return allocate(bytes);
}
void* operator new[](std::size_t bytes, const std::nothrow_t&) noexcept {
    return allocate(bytes);
}
void operator delete(void* block) noexcept {
    release(block);
}
void operator delete[](void* block) noexcept {
    release(block);
}
void operator delete(void* block, std::size_t) noexcept {
    release(block);
}
void operator delete[](void* block, std::size_t) noexcept {
    release(block);
}

// What the library allocates inside the C library; the linker puts these in the place of its calls.
extern "C" {
DIR* __real_fdopendir(int descriptor);
DIR* __wrap_fdopendir(int descriptor) {
    errno = ENOMEM;
    return memory.mayAllocate() ? __real_fdopendir(descriptor) : nullptr;
}
}

namespace {

using tarntest::longText;

int lowestFreeDescriptor() {
    const int descriptor = ::dup(0);
    ::close(descriptor);
    return descriptor;
}

bool hasTemporaryFiles(const std::filesystem::path& folder) {
    const std::filesystem::recursive_directory_iterator all(folder);
    return std::any_of(begin(all), end(all),
                       [](const auto& entry) { return entry.path().extension() == ".new"; });
}

struct Allocation : tarntest::Families {
    // Calls `work` until it passes without a failed allocation.  It is given a function that runs a part of
    // it and answers whether that ran out of memory.
    template <class Work>
    void walk(const char* name, Work work) {
        for (const bool forever : {false, true}) {
            bool failed = true;
            for (long nth = 0; failed && !HasFailure(); ++nth) {  // 0 lets all pass, and makes what stays
                SCOPED_TRACE(std::string(name) + ": " + std::to_string(nth));
                const long live = memory.live;
                const long before = memory.failed;
                const std::int32_t handles = tarn::openHandles();
                const int descriptor = lowestFreeDescriptor();
                work([&](auto part) {
                    memory.failAt(nth, forever);
                    bool thrown = false;
                    try {
                        part();
                    } catch (const std::bad_alloc&) {
                        thrown = true;
                    }
                    memory.failAt(0);
                    return thrown;
                });
                failed = nth == 0 || memory.failed != before;
                EXPECT_TRUE(nth == 0 || memory.live == live) << memory.live - live;
                EXPECT_EQ(tarn::openHandles(), handles);
                EXPECT_EQ(lowestFreeDescriptor(), descriptor);
                EXPECT_FALSE(hasTemporaryFiles(folder.path()));
            }
        }
    }

    // A single change of one object: a failure leaves what it shows, and the change can be made then.
    template <class Object, class Change, class Show>
    void expectKept(const char* name, Object make, Change change, Show show) {
        auto model = make();
        change(*model);
        const std::string after = show(*model);
        walk(name, [&](auto failing) {
            auto object = make();
            const std::string before = show(*object);
            if (failing([&] { change(*object); })) {
                EXPECT_EQ(show(*object), before);
                change(*object);
            }
            EXPECT_EQ(show(*object), after);
        });
    }

    ~Allocation() override { std::fprintf(stderr, "%ld allocations have failed\n", memory.failed); }
};

TEST_F(Allocation, EachFailsOnceAndFromThereOn) {
    for (const auto& family : tarntest::families) {
        const std::string expected = family.answer(1);
        EXPECT_EQ(family.answer(1), expected);
        walk(family.name, [&](auto failing) {
            std::string answer;
            const long before = memory.failed;
            const bool thrown = failing([&] { answer = family.answer(1); });
            const bool isReported = memory.failed != before && answer == tarntest::reported;
            EXPECT_TRUE(thrown || isReported || answer == expected) << answer;
            EXPECT_EQ(family.answer(1), expected);
        });
    }
}

TEST_F(Allocation, AFailedChangeLeavesTheObject) {
    const auto content = tarntest::text(longText);
    const auto shown = [](const auto& record) { return tarntest::readable(record.root); };
    const auto record = [&] {
        auto made = std::make_unique<tarnEngineData>();
        for (std::int32_t i = 0; i < 36; ++i) made->storeMultiData(336 + i % 3, i / 3, &content, 0);  // full
        for (std::int32_t i = 0; i < 29; ++i) made->storeData(i, &content);
        return made;
    };
    const auto store = [&](auto& made) { made.storeData(99, &content); };
    const auto insert = [&](auto& made) { made.insertMultiData(336, 1, &content); };
    const auto move = [](auto& made) { made.moveMultiData(4, 1); };
    const auto put = [&](auto& made) { made.storeMultiData(336, 99, &content, 0); };
    const auto handOut = [](auto& made) {
        const tarn::OwnedValue cell(made.fields->values->getAt(0)->payload.multi->nodes->removeCell(3));
    };
    expectKept("record store", record, store, shown);
    expectKept("record insert", record, insert, shown);
    expectKept("record move", record, move, shown);
    expectKept("row put", record, put, shown);
    expectKept("cell handed out", record, handOut, shown);

    auto loaded = record();
    memory.failAt(1, true);
    loaded->removeMultiData(2);  // needs none
    memory.failAt(0);
    const std::string file = folder.file("saved");
    loaded->saveData(file.c_str());
    loaded->loadData(file.c_str(), loadReplace);
    walk("record load", [&](auto failing) {
        auto made = record();
        failing([&] { made->loadData(file.c_str(), loadReplace); });  // may leave some rows
        made->storeMultiData(336, 30, &content, 0);
        made->loadData(file.c_str(), loadReplace);
        EXPECT_EQ(shown(*made), shown(*loaded));
    });

    const auto string = [] { return std::make_unique<tarnString>(longText); };
    const auto append = [](auto& made) { made.append(longText); };
    expectKept("string", string, append, [](const auto& made) { return std::string(made.text); });
}

}  // namespace
