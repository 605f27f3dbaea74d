/**
 * @file AllocationFailureTest.cpp
 * Every allocation of an operation fails in turn, alone and with all later ones: first the stores, then what is around.
 */
#include "Models/IndexedTable.h"
#include "Support/DescribeProperties.h"
#include "Support/FailingAllocator.h"
#include "Support/Stderr.h"
#include "Support/TemporaryFolder.h"

#include <ImportCommon/ImportCommon.h>

#include <dirent.h>

#include <atomic>
#include <cstring>
#include <functional>
#include <memory>
#include <new>
#include <optional>
#include <set>
#include <string>
#include <vector>

using namespace ImportCommon;

/** A request that is too large to be served is a failure like any other, also for a sanitizer. */
extern "C" const char* __asan_default_options() {
    return "allocator_may_return_null=1";
}

namespace {

/** A table with rows 0, 1, 2 ..., and one index that can be made again. */
class GrowingTable {
public:
    GrowingTable(const dbf_tablespec& spec, int32_t count) : table_(spec) {
        groups_.reserve(10000); // so that only the store allocates
        while (count-- > 0) {
            EXPECT_EQ(insert(), DBF_OK);
        }
    }

    int insert() {
        const auto key = static_cast<int32_t>(groups_.size());
        const int result = table_.insert(rowOf(key, key % 5));
        if (result == DBF_OK) {
            groups_.push_back(key % 5);
        }
        return result;
    }

    int clear() {
        groups_.clear();
        return dbf_cleartable(table_.table.get());
    }

    int addIndex() {
        const dbf_indexspec spec{1, 1};
        const int32_t fields[] = {2, -1};
        dbf_index* const index = dbf_createindex(table_.table.get(), &spec, fields);
        table_.byText = index != nullptr ? index : table_.byText;
        return index != nullptr ? DBF_OK : DBF_FAILED;
    }

    void check() const {
        std::vector<int32_t> groups = groups_;
        groups.resize(groups.size() + 50, noGroup);
        table_.check(groups);
    }

private:
    IndexedTable table_;
    std::vector<int32_t> groups_; // of the rows that must be there
};

TEST_F(AllocationFailureTest, tableStaysWhole) {
    const auto insert = [](GrowingTable& table) { return table.insert(); };
    const auto clear = [](GrowingTable& table) { return table.clear(); };
    const auto addIndex = [](GrowingTable& table) { return table.addIndex(); };
    const struct {
        const char* what;
        dbf_tablespec storage;
        int32_t rows;
        int (*run)(GrowingTable&);
    } cases[] = {{"larger hash and bucket array", {0, 1}, 16, insert},
                 {"larger bucket array", {0, 2}, 32, insert},
                 {"third large bucket", {0, 2000}, 4000, insert},
                 {"clear", {10, 7}, 500, clear},
                 {"create index", {0, 7}, 500, addIndex}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        forEachFailure([&c](const Failure& failure) {
            GrowingTable table(c.storage, c.rows);
            int result = DBF_OK;
            const bool failed = failure.during([&] { result = c.run(table); });
            EXPECT_EQ(result, failed ? DBF_FAILED : DBF_OK);
            table.check();
            if (failed) {
                noMemory.during([&] { result = c.run(table); });
                EXPECT_EQ(result, DBF_FAILED) << "no memory yet";
                table.check();
                EXPECT_EQ(c.run(table), DBF_OK);
                for (int more = 0; more < 300; ++more) {
                    EXPECT_EQ(table.insert(), DBF_OK) << more;
                }
                table.check();
            }
            return failed;
        });
    }
}

TEST_F(AllocationFailureTest, tableIsCreatedWholeOrNotAtAll) {
    const std::string log = stderrOf([] {
        forEachFailure([](const Failure& failure) {
            const dbf_tablespec spec{40, 2};
            const dbf_fieldspec fields[] = {{DBF_BYTES, 24}, {DBF_END, 0}};
            TablePtr table(nullptr, &dbf_droptable);
            const bool failed = failure.during([&] { table.reset(dbf_createtable(&spec, fields)); });
            EXPECT_EQ(table == nullptr, failed);
            return failed;
        });
    });
    EXPECT_NE(log.find("libdbfast: cannot allocate memory (48 bytes) for bucket data\n"), std::string::npos) << log;
}

TEST_F(AllocationFailureTest, identityIsEmpty) {
    const double vertex[11] = {1, 2, 3};
    const ExternalGUID good = ExternalGUID::fromHalvorneObi(7);
    const std::function<ExternalGUID()> makers[] = {
        [&] { return ExternalGUID(good); },
        [] { return ExternalGUID::fromIFCGlobalID("2O2Fr$t4X7Zf8NOew3FLOH"); },
        [] { return ExternalGUID::fromPX({{1}}); },
        [] { return ExternalGUID::fromHalvorneObi(7); },
        [] { return ExternalGUID::fromByteStream(4, "\4\0\0"); },
        [&] { return ExternalGUID::spatialHashFromVertexes(1, vertex); }};
    const auto bytesOf = [](const ExternalGUID& guid) {
        unsigned int size = 0;
        const char* const bytes = guid.getBytes(&size);
        return std::string(bytes, size);
    };
    for (const auto& make : makers) {
        forEachFailure([&](const Failure& failure) {
            std::optional<ExternalGUID> guid;
            const bool failed = failure.during([&] { guid.emplace(make()); });
            EXPECT_EQ(bytesOf(*guid), failed ? std::string(96, '\0') : bytesOf(make())) << &make - makers;
            noMemory.during([&] { guid->fromSpatialHash(vertex); });
            *guid = good;
            const std::string assigned = bytesOf(*guid); // a value without its block stays empty
            EXPECT_TRUE(assigned == bytesOf(good) || (failed && assigned == std::string(96, '\0')));
            return failed;
        });
    }
}

TEST_F(AllocationFailureTest, treeWithoutNodesStaysEmpty) {
    forEachFailure([](const Failure& failure) {
        std::unique_ptr<CDxKDTree> tree;
        const double vector = 1;
        const bool failed = failure.during([&] { tree.reset(new (std::nothrow) CDxKDTree(1)); });
        if (tree != nullptr) {
            EXPECT_EQ(tree->insert(&vector), 0U);
            EXPECT_EQ(tree->find(&vector), failed ? CDxKDTree::NotFound : 0);
            EXPECT_EQ(tree->getVector(0) == nullptr, failed);
        }
        return failed;
    });
}

TEST_F(AllocationFailureTest, treeKeepsItsNodes) {
    // The next node ends skips of two levels, or needs a block besides.
    for (const unsigned int before : {256U, 1024U}) {
        forEachFailure([before](const Failure& failure) {
            CDxKDTree tree(2);
            const auto insert = [&tree](unsigned int id) {
                const double vector[] = {id * 1.0, id / 512 * 1.0};
                return tree.insert(vector);
            };
            for (unsigned int id = 0; id < before; ++id) {
                EXPECT_EQ(insert(id), id);
            }
            unsigned int result = 0;
            unsigned int neighbour = 0;
            const bool failed = failure.during([&] {
                result = insert(before);
                const double nearby[] = {700.001, 1}; // which takes a descent, with its short cuts
                neighbour = tree.find(nearby);
            });
            EXPECT_EQ(neighbour, before > 700 ? 700 : CDxKDTree::NotFound);
            const bool isAdded = tree.getCount() == before + 1;
            EXPECT_EQ(result, isAdded ? before : 0);
            EXPECT_TRUE(isAdded || (failed && tree.getCount() == before));
            for (unsigned int id = 0; id < before + 2000; ++id) {
                EXPECT_EQ(insert(id), id);
            }
            for (unsigned int id = 0; id < before + 2000; ++id) {
                EXPECT_EQ(tree.find(tree.getVector(id)), id);
            }
            return failed;
        });
    }
}

/** Whether an identity is known, under the same id both ways, or unknown both ways. */
bool knows(ExternalGUIDDatabase& database, const ExternalGUID& guid, int id) {
    const int found = database.findGUID(guid);
    unsigned int size = 0;
    const ExternalGUID back = database.findGUID(static_cast<ExternalGUIDRuntimeID_e>(id));
    const bool same = std::memcmp(back.getBytes(&size), guid.getBytes(&size), 96) == 0;
    EXPECT_EQ(found == id && id != -1, same) << id;
    EXPECT_TRUE(same || (found == -1 && back.getType() == ExternalGUID::GUIDTypeNone)) << id;
    return same;
}

TEST_F(AllocationFailureTest, databaseAnswersForTheKindsThatItHas) {
    const double hash[11] = {1, 2, 3};
    const ExternalGUID guids[] = {ExternalGUID::fromIFCGlobalID("2O2Fr$t4X7Zf8NOew3FLOH"), ExternalGUID::fromPX({{1}}),
                                  ExternalGUID::fromHalvorneObi(7), ExternalGUID::spatialHashFromVertexes(1, hash)};
    forEachFailure([&guids](const Failure& failure) {
        std::optional<ExternalGUIDDatabase> database;
        const bool failed = failure.during([&] { database.emplace(); });
        int known = 0;
        for (const ExternalGUID& guid : guids) {
            known += knows(*database, guid, database->insertGUID(guid)) ? 1 : 0;
        }
        EXPECT_EQ(known == 4, !failed);
        EXPECT_TRUE(known == 0 || known >= 3 || failure.extent == FailingAllocator::FromThenOn)
            << "one failure, one kind";
        return failed;
    });
}

TEST_F(AllocationFailureTest, databaseKeepsItsIdentities) {
    const auto px = [](int number) {
        return ExternalGUID::fromPX({{1, static_cast<unsigned char>(number), static_cast<unsigned char>(number >> 8)}});
    };
    const auto hash = [](int number) {
        const double vertex[] = {number * 1.0, 0, 0};
        return ExternalGUID::spatialHashFromVertexes(1, vertex);
    };
    const struct {
        ExternalGUID (*guidOf)(int number);
        int before, first, next;
        int failed, lost; // what a failed insert answers, and how many ids it uses up
    } cases[] = {{px, 2000, -2, -1, -1, 1}, {px, 4000, -2, -1, -1, 1}, {hash, 1024, 0, 1, 0, 0}};
    for (const auto& c : cases) {
        forEachFailure([&c](const Failure& failure) {
            ExternalGUIDDatabase database;
            for (int number = 0; number < c.before; ++number) {
                EXPECT_EQ(database.insertGUID(c.guidOf(number)), c.first + c.next * number);
            }
            const ExternalGUID guid = c.guidOf(c.before);
            const int expected = c.first + c.next * c.before;
            int id = 0;
            const bool failed = failure.during([&] { id = database.insertGUID(guid); });
            const bool isAdded = id == expected; // the tree gets by without some of its memory
            EXPECT_TRUE(isAdded || (failed && id == c.failed)) << id;
            EXPECT_EQ(database.findGUID(guid), isAdded ? expected : -1);
            for (int number = 0; number < c.before; ++number) {
                EXPECT_TRUE(knows(database, c.guidOf(number), c.first + c.next * number));
            }
            const int retried = database.insertGUID(guid);
            EXPECT_EQ(retried, expected + c.next * (isAdded ? 0 : c.lost));
            EXPECT_TRUE(knows(database, guid, retried));
            return failed;
        });
    }
}

using Stream = std::unique_ptr<FileStream>;
using Cursor = std::unique_ptr<dbf_cursor, decltype(&dbf_closecursor)>;

/** A result as text, made when there is memory again. */
template <typename T>
std::wstring textOf(const T& value) {
    if constexpr (std::is_arithmetic_v<T>) {
        return std::to_wstring(value);
    } else if constexpr (std::is_same_v<T, IFC2X3Property> || std::is_same_v<T, IFC2X3PropertySet>) {
        return describe(value);
    } else {
        return {value.begin(), value.end()};
    }
}

/** Handles that are open, to see that none is left behind. */
std::ptrdiff_t openHandles() {
    std::ptrdiff_t count = 0;
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir("/dev/fd"), closedir);
    while (folder && readdir(folder.get()) != nullptr) {
        ++count;
    }
    return count;
}

/** What an operation answers; "throws" stands for std::bad_alloc. */
template <typename Operation>
std::wstring answerOf(const Operation& operation, std::optional<FailingAllocator>* memory = nullptr) {
    std::optional<std::decay_t<decltype(operation())>> result;
    try {
        result.emplace(operation());
    } catch (const std::bad_alloc&) {
    }
    if (memory != nullptr) {
        memory->reset();
    }
    return result ? textOf(*result) : L"throws";
}

/**
 * Calls an operation with its first, second, third ... allocation failing, alone and with all later ones. It answers as
 * with enough memory, since the system gets by with less in places, or with one of @p without; then it works again.
 */
template <typename Operation>
void expectAnswers(const char* what, const std::set<std::wstring>& without, const Operation& operation) {
    SCOPED_TRACE(what);
    const std::wstring whole = answerOf(operation); // the first call may allocate for good
    ASSERT_EQ(without.count(whole), 0U);
    bool shown = false;
    forEachFailure([&](const Failure& failure) {
        const std::ptrdiff_t handles = openHandles();
        std::optional<FailingAllocator> memory(std::in_place, failure.which, failure.extent);
        const std::wstring answer = answerOf(operation, &memory);
        const bool failed = FailingAllocator::hasFailed();
        EXPECT_TRUE(answer == whole || (failed && without.count(answer) != 0)) << testing::PrintToString(answer);
        EXPECT_EQ(openHandles(), handles);
        EXPECT_EQ(answerOf(operation), whole) << "afterwards";
        shown = shown || answer != whole;
        return failed;
    });
    EXPECT_TRUE(shown) << "no failure showed";
}

template <typename Operation>
void expectThrows(const char* what, const Operation& operation) {
    expectAnswers(what, {L"throws"}, operation);
}

// Longer than what a string holds without memory of its own.
const std::string longText = "a text of forty-two characters, caf\xC3\xA9 \xE4\xB8\xAD\xE6\x96\x87";
const std::wstring longWide = L"a text of forty-two characters, caf\u00E9 \u4E2D\u6587";

TEST_F(AllocationFailureTest, texts) {
    const auto* const bytes = reinterpret_cast<const unsigned char*>(longText.c_str());
    expectThrows("decode", [=] { return StringOperations::ConvertFromUTF8(bytes); });
    expectThrows("decode n bytes", [=] { return StringOperations::ConvertFromUTF8(bytes, longText.size()); });
    expectThrows("from the locale", [] { return StringOperations::ConvertFromCurrentLocale(longText); });
    expectThrows("to the locale", [] { return StringOperations::ConvertToCurrentLocale(longWide); });
    expectThrows("to the locale's buffer", [] {
        char text[64];
        StringOperations::ConvertToCurrentLocale(longWide.data(), longWide.size(), text, sizeof text);
        return text[0] == 'a' && text[63] == 0;
    });
    expectThrows("to ISO 8859-1", [] {
        std::string text;
        return !StringOperations::TryConvertToIsoLatin1(longWide, text) && text.size() == longWide.size();
    });
    expectThrows("number", [] { return StringOperations::AsWString(4294967295U - 10000); });
}

TEST_F(AllocationFailureTest, environment) {
    EnvironmentVariables::SetString(L"ic_test", longWide);
    expectThrows("get", [] { return EnvironmentVariables::GetString(L"ic_test"); });
    expectThrows("expand", [] { return EnvironmentVariables::ExpandVariables(longWide); });

    // The system may keep what it was given before, so each call gives it something new.
    std::wstring text;
    const auto nextText = [&] { text = longWide + std::to_wstring(text.size()) + text.substr(0, 100); };
    int number = 0;
    for (nextText(); number < 3; ++number, nextText()) {
        const std::wstring key = L"ic_test" + std::to_wstring(number);
        EXPECT_EQ(EnvironmentVariables::SetInt(key, number), 0);
        const FailingAllocator memory(1);
        EXPECT_EQ(EnvironmentVariables::SetString(key, text), -1);
        EXPECT_EQ(EnvironmentVariables::SetInt(key, 987600 + number), -1);
        EXPECT_EQ(EnvironmentVariables::SetFileStreamHandle(key, stderr), -1);
        EXPECT_EQ(EnvironmentVariables::GetInt(key), number) << "the earlier value stays";
    }
}

TEST_F(AllocationFailureTest, importEnvironment) {
    EnvironmentVariables::SetInt(L"fo_handle_version", 1);
    EnvironmentVariables::SetFileStreamHandle(L"fo_handle_textures", stderr);
    for (const wchar_t* const key : {L"fo_string_filename", L"fo_string_module", L"fo_string_path"}) {
        EnvironmentVariables::SetString(key, longWide);
    }
    expectThrows("deserialize", [] {
        ForeignObjectEnv_t env = {};
        foreignobject_env_deserialize(env);
        return env.textures == stderr && env.fileName + env.module == longWide + longWide && env.path == longWide;
    });
}

TEST_F(AllocationFailureTest, files) {
    const TemporaryFolder folder;
    const std::wstring name = L"a file with a name of more than a few characters.ifc.txt";
    writeFile(std::string(name.begin(), name.end()), "content");
    using Files = FileOperations;
    expectThrows("name without path", [&] { return Files::GetFileWithoutPath(L"folder/" + name); });
    expectThrows("name without extension", [&] { return Files::GetFileWithoutExtenstion(L"folder/" + name); });
    expectThrows("ending slash", [&] { return Files::InsertEndingDirectorySlash(name); });
    expectThrows("exists", [&] { return Files::Exists(name); });
    expectThrows("is a folder", [&] { return !Files::IsDirectory(name); });
    expectThrows("read access", [&] { return Files::HasReadAccess(name); });
    expectThrows("write access", [&] { return Files::HasWriteAccess(name); });
    expectThrows("size", [&] { return Files::GetFileSize(name); });
    expectThrows("time", [&] { return Files::GetFileLastWriteTime(name); });
    expectThrows("free space", [&] { return Files::GetFreeBytesAvailable(name) != 0; });
    expectThrows("time as text", [] { return Files::ConvertSystemTimeToTimeString({}); });
    const std::wstring other = name + L".folder";
    expectThrows("make and delete a folder", [&] {
        const bool made = Files::MakeDirectory(other) || Files::IsDirectory(other);
        return made && Files::DeleteDirectory(other);
    });
    // Here the system looks at the disk, and may fail by itself.
    const std::set<std::wstring> without = {L"throws", L""};
    expectAnswers("full path", without, [&] { return Files::GetFullPath(name); });
    expectAnswers("full path of a new file", without, [&] { return Files::GetFullPath(other); });
    expectAnswers("folder", without, [&] { return Files::GetFullFolder(name); });
    const std::wstring listed = folder.widePath() + L"/" + name;
    expectAnswers("scan", {L"throws", L"0"}, [&] {
        const std::vector<std::wstring> files = Files::ScanFilesInDirectory(folder.widePath());
        return files.size() == 1 && files[0] == listed;
    });
}

TEST_F(AllocationFailureTest, streams) {
    const TemporaryFolder folder;
    const std::wstring path = L"a file with a name of more than a few characters.txt";
    writeFile(std::string(path.begin(), path.end()), "content");
    const auto contentOf = [](const Stream& stream) {
        std::vector<char> bytes;
        const bool read = stream && stream->read(4096, bytes);
        return read ? std::string(bytes.begin(), bytes.end()) : std::string();
    };
    expectAnswers("read", {L"throws", L""}, [&] { return contentOf(Stream(FileStream::openFileForReading(path))); });
    expectAnswers("write", {L"throws", L""}, [&] {
        const Stream stream(FileStream::createFileForWriting(path));
        const bool written = stream && stream->write(4, "text");
        if (written) {
            stream->seekToBegin();
        }
        return written ? contentOf(stream) : std::string();
    });
    expectAnswers("borrowed handle", {L"0"}, [] { return Stream(FileStream::createFromHandle(stderr)) != nullptr; });
}

/** Counts its calls, and tells whether it got data. */
std::atomic<int> calls;
unsigned int countCall(void* data, unsigned long /*size*/) {
    ++calls;
    return data != nullptr ? 1 : 0;
}

TEST_F(AllocationFailureTest, threadsAndLocks) {
    int started = 0;
    expectAnswers("thread", {L"throws", L"0"}, [&] {
        const pthread_t thread = ThreadOperations::createThread(countCall, "abc", 3, false);
        const bool known = ThreadOperations::hasEnded(thread, nullptr);
        EXPECT_EQ(ThreadOperations::closeThread(thread) == 1, known);
        started += known ? 1 : 0;
        return known;
    });
    EXPECT_EQ(calls, started);

    const pthread_t thread = ThreadOperations::createThread(countCall, "", PTRDIFF_MAX, false);
    void* result = nullptr;
    ASSERT_EQ(pthread_join(thread, &result), 0);
    EXPECT_EQ(result, nullptr) << "a thread without memory for its data gets none";

    const CriticalSection::Lock none(nullptr);
    expectAnswers("lock", {L"0"}, [] {
        CriticalSection section;
        { const CriticalSection::Lock lock(&section); }
        const bool entered = section.Enter(nullptr) == 0;
        EXPECT_EQ(section.Leave(nullptr) == 0, entered);
        return entered;
    });
}

TEST_F(AllocationFailureTest, libraries) {
    const std::string path = PLAIN_LIBRARY;
    const std::wstring wide(path.begin(), path.end());
    testing::internal::CaptureStderr(); // the loader's reason, at most once
    const auto isValid = [](std::unique_ptr<DynamicLibrary> library) { return library && library->isValid(); };
    const auto open = [&] { return DynamicLibrary::loadDynamicLibrary(wide, L""); };
    expectAnswers("library", {L"throws", L"0"}, [&] { return isValid(std::unique_ptr<DynamicLibrary>(open())); });
    expectAnswers("executable", {L"throws", L"0"},
                  [&] { return isValid(std::unique_ptr<DynamicLibrary>(DynamicLibrary::getExecutable())); });
    testing::internal::GetCapturedStderr();
}

TEST_F(AllocationFailureTest, versions) {
    const double numbers[8] = {1, 2, 3, 4, 5, 6, 7, 8};
    const ExternalVersion solid = createFromSolid(1, 2, 3, numbers, 4, numbers);
    expectThrows("copy", [&] { return ExternalVersion(solid) == solid; });
    expectThrows("box", [] { return createFromBoundingBox(1, 2, 3).getType() == ExternalVersionType_BoundingBox; });
    expectThrows("geometry",
                 [&] { return createFromGeometry(1, 2, 3, numbers).getType() == ExternalVersionType_Geometry; });
    expectThrows("solid", [&] { return createFromSolid(1, 2, 3, numbers, 4, numbers) == solid; });
    ExternalVersion version;
    expectThrows("assignment", [&] {
        version = solid;
        return version == solid;
    });
    noMemory.during([&] { EXPECT_THROW(version = solid, std::bad_alloc); });
    EXPECT_EQ(version.getType(), ExternalVersionType_Invalid) << "a version that lost its object";
    char stream[CExternalVersion::MaximumStreamSize];
    EXPECT_EQ(version.toByteStream(sizeof stream, stream), 4U);
}

TEST_F(AllocationFailureTest, properties) {
    IFC2X3PropertySet set;
    for (const wchar_t* const name : {L"a", L"b", L"c"}) {
        set.addProperty(createPropertySingleValueString(name, L"", L"value"));
    }
    // A set without memory for its list is silently empty.
    const std::set<std::wstring> without = {L"throws", L"Size/=usage{};"};
    const IFC2X3Property complex = createPropertyComplex(L"Size", L"", L"usage", set);
    expectAnswers("make", without, [&] { return createPropertyComplex(L"Size", L"", L"usage", set); });
    expectAnswers("copy", without, [&] { return IFC2X3Property(complex); });
    IFC2X3Property assigned;
    expectAnswers("assign", without, [&] {
        assigned = complex;
        return std::move(assigned);
    });
    // Without memory for its list a set drops what is added.
    const std::wstring some = describe(set);
    const std::wstring emptied = L"Size/=usage{};";
    expectAnswers("add", {L"throws", L"", some, some + emptied, emptied, describe(complex)}, [&] {
        IFC2X3PropertySet more = set;
        more.addProperty(complex);
        return more;
    });
    IFC2X3_PSet_RoofCommon_s roof{};
    expectAnswers("record", {L"throws", L"", L"FireRating/=1:;IsExternal/=2:0;"},
                  [&] { return IFC2X3_PSet_Custom_s(roof).properties; });
    const PngTexture texture(std::vector<char>(3));
    expectThrows("texture", [&] { return PngTexture(texture).getData().size() == 3; });
}

TEST_F(AllocationFailureTest, cursors) {
    const TablePtr table = createTable({0, 50}, {{DBF_INT, 0}, {DBF_INT, 0}});
    dbf_index* const index = createIndex(table, false, {1});
    for (int32_t id = 0; id < 200; ++id) {
        const int32_t row[] = {id, id % 2};
        ASSERT_EQ(dbf_insert(table.get(), row), DBF_OK);
    }
    const int32_t row[] = {0, 1};
    const auto rowsOf = [](const Cursor& cursor) { return cursor ? dbf_getcursorrowcount(cursor.get()) : -1; };
    stderrOf([&] {
        expectAnswers("all rows", {L"-1"}, [&] { return rowsOf({dbf_opencursor_all(table.get()), &dbf_closecursor}); });
        expectAnswers("rows of a key", {L"-1"}, [&] { return rowsOf({dbf_opencursor(index, row), &dbf_closecursor}); });
    });
}

} // namespace
