/**
 * @file KeyStores.h
 * What a program would keep pairs of a number and a GlobalId in, were it not for this library. All find a pair by both.
 */
#pragma once

#include "BenchmarkSupport.h"

#ifdef HAVE_BOOST
#include <boost/multi_index/hashed_index.hpp>
#include <boost/multi_index/member.hpp>
#include <boost/multi_index_container.hpp>
#endif
#ifdef HAVE_ABSL
#include <absl/container/flat_hash_map.h>
#include <absl/strings/string_view.h>
#endif
#ifdef HAVE_SQLITE
#include <sqlite3.h>
#endif

#include <cstdlib>
#include <unordered_map>

struct Pair {
    std::int32_t id;
    Key key;
};

/** A store that is given the 22 characters themselves. */
struct KeyedByText {
    static const std::vector<Key>& inputsOf(const std::vector<Key>& keys) { return keys; }
};

struct StdHash {
    std::size_t operator()(const Key& key) const { return std::hash<std::string_view>()(key.view()); }
};

/** Two hash maps, one by key and one by number. */
template <typename ByKey, typename ById>
class TwoMaps : public KeyedByText {
public:
    /** The number of a key; one that is new gets @p id. */
    std::int32_t findOrInsert(std::int32_t id, const Key& key) {
        const auto [found, isNew] = byKey_.try_emplace(key, id);
        if (isNew) {
            byId_.emplace(id, key);
        }
        return found->second;
    }
    std::int32_t find(const Key& key) const {
        const auto found = byKey_.find(key);
        return found != byKey_.end() ? found->second : -1;
    }
    Key keyOf(std::int32_t id) const {
        const auto found = byId_.find(id);
        return found != byId_.end() ? found->second : Key();
    }
    void erase(const Key& key) {
        const auto found = byKey_.find(key);
        byId_.erase(found->second);
        byKey_.erase(found);
    }

private:
    ByKey byKey_;
    ById byId_;
};

using UnorderedMaps = TwoMaps<std::unordered_map<Key, std::int32_t, StdHash>, std::unordered_map<std::int32_t, Key>>;

#ifdef HAVE_ABSL
struct AbslHash {
    std::size_t operator()(const Key& key) const {
        return absl::Hash<absl::string_view>()({key.text.data(), key.text.size()});
    }
};

using FlatHashMaps = TwoMaps<absl::flat_hash_map<Key, std::int32_t, AbslHash>, absl::flat_hash_map<std::int32_t, Key>>;
#endif

#ifdef HAVE_BOOST
/** One container with two hashed unique indexes. */
class MultiIndex : public KeyedByText {
public:
    std::int32_t findOrInsert(std::int32_t id, const Key& key) { return pairs_.insert({id, key}).first->id; }
    std::int32_t find(const Key& key) const {
        const auto found = pairs_.get<0>().find(key);
        return found != pairs_.get<0>().end() ? found->id : -1;
    }
    Key keyOf(std::int32_t id) const {
        const auto found = pairs_.get<1>().find(id);
        return found != pairs_.get<1>().end() ? found->key : Key();
    }
    void erase(const Key& key) { pairs_.get<0>().erase(key); }

private:
    using ByKey = boost::multi_index::hashed_unique<boost::multi_index::member<Pair, Key, &Pair::key>, StdHash>;
    using ById = boost::multi_index::hashed_unique<boost::multi_index::member<Pair, std::int32_t, &Pair::id>>;
    boost::multi_index_container<Pair, boost::multi_index::indexed_by<ByKey, ById>> pairs_;
};
#endif

#ifdef HAVE_SQLITE
/** A table in memory with two unique indexes, statements prepared, everything in one transaction. */
class SqliteTable : public KeyedByText {
public:
    SqliteTable() {
        check(sqlite3_open(":memory:", &database_));
        const char* setUp = "CREATE TABLE pairs(id INTEGER NOT NULL UNIQUE, key BLOB NOT NULL UNIQUE); BEGIN";
        check(sqlite3_exec(database_, setUp, nullptr, nullptr, nullptr));
        insert_ = prepare("INSERT INTO pairs(id, key) VALUES(?2, ?1)");
        find_ = prepare("SELECT id FROM pairs WHERE key = ?1");
        keyOf_ = prepare("SELECT key FROM pairs WHERE id = ?1");
        erase_ = prepare("DELETE FROM pairs WHERE key = ?1");
    }
    ~SqliteTable() {
        for (sqlite3_stmt* statement : {insert_, find_, keyOf_, erase_}) {
            sqlite3_finalize(statement);
        }
        sqlite3_close(database_);
    }
    SqliteTable(const SqliteTable&) = delete;
    SqliteTable& operator=(const SqliteTable&) = delete;

    std::int32_t findOrInsert(std::int32_t id, const Key& key) {
        bindKey(insert_, key);
        sqlite3_bind_int(insert_, 2, id);
        const bool isNew = sqlite3_step(insert_) == SQLITE_DONE;
        sqlite3_reset(insert_);
        return isNew ? id : find(key);
    }
    std::int32_t find(const Key& key) const {
        bindKey(find_, key);
        const std::int32_t id = sqlite3_step(find_) == SQLITE_ROW ? sqlite3_column_int(find_, 0) : -1;
        sqlite3_reset(find_);
        return id;
    }
    Key keyOf(std::int32_t id) const {
        Key key = {};
        sqlite3_bind_int(keyOf_, 1, id);
        if (sqlite3_step(keyOf_) == SQLITE_ROW) {
            std::memcpy(key.text.data(), sqlite3_column_blob(keyOf_, 0), key.text.size());
        }
        sqlite3_reset(keyOf_);
        return key;
    }
    void erase(const Key& key) {
        bindKey(erase_, key);
        sqlite3_step(erase_);
        sqlite3_reset(erase_);
    }

private:
    static void check(int result) {
        if (result != SQLITE_OK) {
            std::abort();
        }
    }
    static void bindKey(sqlite3_stmt* statement, const Key& key) {
        sqlite3_bind_blob(statement, 1, key.text.data(), static_cast<int>(key.text.size()), SQLITE_STATIC);
    }
    sqlite3_stmt* prepare(const char* sql) const {
        sqlite3_stmt* statement = nullptr;
        check(sqlite3_prepare_v2(database_, sql, -1, &statement, nullptr));
        return statement;
    }

    sqlite3* database_ = nullptr;
    sqlite3_stmt* insert_;
    sqlite3_stmt* find_;
    sqlite3_stmt* keyOf_;
    sqlite3_stmt* erase_;
};
#endif

/** Calls @p add with each alternative: a type to make a store of, and its name. */
template <typename Add>
void forEachKeyStore(Add add) {
    add(static_cast<UnorderedMaps*>(nullptr), "two std::unordered_map");
#ifdef HAVE_ABSL
    add(static_cast<FlatHashMaps*>(nullptr), "two absl::flat_hash_map");
#endif
#ifdef HAVE_BOOST
    add(static_cast<MultiIndex*>(nullptr), "Boost.MultiIndex");
#endif
#ifdef HAVE_SQLITE
    add(static_cast<SqliteTable*>(nullptr), "SQLite");
#endif
}
