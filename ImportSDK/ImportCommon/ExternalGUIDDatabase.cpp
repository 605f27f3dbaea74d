#include <DbFast/dbfast.h>
#include <ImportCommon/DxKDTree.h>
#include <ImportCommon/ExternalGUIDDatabase.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <new>

namespace ImportCommon {

namespace {

constexpr unsigned int globalIdSize = ExternalGUID::GlobalIdSize;

const dbf_tablespec tblIFCGlobalIDSpec = {2000, 2000};
const dbf_fieldspec fldIFCGlobalIDSpec[] = {{DBF_INT, 0}, {DBF_BYTES, globalIdSize}, {DBF_END, 0}};
const dbf_indexspec idxIFCGlobalIDByRuntimeIDSpec = {1, 1};
const std::int32_t idxIFCGlobalIDByRuntimeIDFields[] = {0, -1};
const dbf_indexspec idxIFCGlobalIDByIFCGlobalIDSpec = {1, 1};
const std::int32_t idxIFCGlobalIDByIFCGlobalIDFields[] = {1, -1};

const dbf_tablespec tblPXGUIDGlobalIDSpec = {2000, 2000};
const dbf_fieldspec fldPXGUIDGlobalIDSpec[] = {{DBF_INT, 0}, {DBF_BYTES, sizeof(PXGUID_t)}, {DBF_END, 0}};
const dbf_indexspec idxPXGUIDGlobalIDByRuntimeIDSpec = {1, 1};
const std::int32_t idxPXGUIDGlobalIDByRuntimeIDFields[] = {0, -1};
const dbf_indexspec idxPXGUIDGlobalIDByPXGUIDGlobalIDSpec = {1, 1};
const std::int32_t idxPXGUIDGlobalIDByPXGUIDGlobalIDFields[] = {1, -1};

const dbf_tablespec tblHALVORNEGUIDGlobalIDSpec = {2000, 2000};
const dbf_fieldspec fldHALVORNEGUIDGlobalIDSpec[] = {{DBF_INT, 0}, {DBF_INT, 0}, {DBF_END, 0}};
const dbf_indexspec idxHALVORNEGUIDGlobalIDByRuntimeIDSpec = {1, 1};
const std::int32_t idxHALVORNEGUIDGlobalIDByRuntimeIDFields[] = {0, -1};
const dbf_indexspec idxHALVORNEGUIDGlobalIDByHALVORNEGUIDGlobalIDSpec = {1, 1};
const std::int32_t idxHALVORNEGUIDGlobalIDByHALVORNEGUIDGlobalIDFields[] = {1, -1};

using GlobalId = std::array<char, globalIdSize>;

/** The identities of one kind: rows of a runtime id and a key. A table without memory holds nothing. */
template <typename Key>
class KeyTable {
public:
    KeyTable(const dbf_tablespec& tableSpec, const dbf_fieldspec* fields, const dbf_indexspec& byRuntimeIdSpec,
             const std::int32_t* byRuntimeIdFields, const dbf_indexspec& byKeySpec, const std::int32_t* byKeyFields)
        : table_(dbf_createtable(&tableSpec, fields)),
          byRuntimeId_(dbf_createindex(table_, &byRuntimeIdSpec, byRuntimeIdFields)),
          byKey_(dbf_createindex(table_, &byKeySpec, byKeyFields)) {}

    ~KeyTable() {
        dbf_dropindex(byKey_);
        dbf_dropindex(byRuntimeId_);
        dbf_droptable(table_);
    }

    KeyTable(const KeyTable&) = delete;
    KeyTable& operator=(const KeyTable&) = delete;

    /** The runtime id of a key, or -1. */
    std::int32_t find(const void* key) const {
        Row row = rowOf(ExternalGUIDRuntimeID_None, key);
        return isUsable() && dbf_select(byKey_, &row) == DBF_OK ? row.runtimeId : ExternalGUIDRuntimeID_None;
    }

    /** Whether there is a key with that runtime id. */
    bool findKey(std::int32_t runtimeId, Key& key) const {
        Row row;
        row.runtimeId = runtimeId;
        if (!isUsable() || dbf_select(byRuntimeId_, &row) != DBF_OK) {
            return false;
        }
        key = row.key;
        return true;
    }

    /** The runtime id of a key; one that is new gets @p nextId, which counts down even when it can't be stored. */
    std::int32_t findOrInsert(const void* key, std::int32_t& nextId) {
        if (!isUsable() || nextId == INT32_MIN) {
            return find(key);
        }
        // Most keys are new, and the insert finds out by itself when one is not.
        const Row row = rowOf(nextId, key);
        const int result = dbf_insert(table_, &row);
        if (result == DBF_DUPLICATE) {
            return find(key);
        }
        --nextId;
        return result == DBF_OK ? row.runtimeId : ExternalGUIDRuntimeID_None;
    }

private:
    struct Row {
        std::int32_t runtimeId;
        Key key;
    };

    static Row rowOf(std::int32_t runtimeId, const void* key) {
        Row row;
        row.runtimeId = runtimeId;
        std::memcpy(&row.key, key, sizeof row.key);
        return row;
    }

    bool isUsable() const { return byRuntimeId_ != nullptr && byKey_ != nullptr; }

    dbf_table* table_;
    dbf_index* byRuntimeId_;
    dbf_index* byKey_;
};

/** An identity of a GlobalId with all its characters, a zero among them included. */
ExternalGUID guidOfGlobalId(const GlobalId& globalId) {
    char record[ExternalGUID::PayloadOffset + globalIdSize] = {};
    const std::uint32_t type = ExternalGUID::GUIDTypeIFCGlobalID;
    std::memcpy(record, &type, sizeof type);
    std::memcpy(record + ExternalGUID::PayloadOffset, globalId.data(), globalIdSize);
    return ExternalGUID::fromByteStream(sizeof record, record);
}

} // namespace

struct ExternalGUIDDatabase::State {
    CDxKDTree spatialHashes{ExternalGUID::SpatialHashSize};
    KeyTable<GlobalId> globalIds{tblIFCGlobalIDSpec,
                                 fldIFCGlobalIDSpec,
                                 idxIFCGlobalIDByRuntimeIDSpec,
                                 idxIFCGlobalIDByRuntimeIDFields,
                                 idxIFCGlobalIDByIFCGlobalIDSpec,
                                 idxIFCGlobalIDByIFCGlobalIDFields};
    KeyTable<PXGUID_t> pxGuids{tblPXGUIDGlobalIDSpec,
                               fldPXGUIDGlobalIDSpec,
                               idxPXGUIDGlobalIDByRuntimeIDSpec,
                               idxPXGUIDGlobalIDByRuntimeIDFields,
                               idxPXGUIDGlobalIDByPXGUIDGlobalIDSpec,
                               idxPXGUIDGlobalIDByPXGUIDGlobalIDFields};
    KeyTable<std::int32_t> halvorneObis{tblHALVORNEGUIDGlobalIDSpec,
                                        fldHALVORNEGUIDGlobalIDSpec,
                                        idxHALVORNEGUIDGlobalIDByRuntimeIDSpec,
                                        idxHALVORNEGUIDGlobalIDByRuntimeIDFields,
                                        idxHALVORNEGUIDGlobalIDByHALVORNEGUIDGlobalIDSpec,
                                        idxHALVORNEGUIDGlobalIDByHALVORNEGUIDGlobalIDFields};
    std::int32_t nextKeyId = -2;

    ExternalGUID guidOfNode(unsigned int node) {
        ExternalGUID guid;
        if (node < spatialHashes.getCount()) {
            guid.fromSpatialHash(spatialHashes.getVector(node));
        }
        return guid;
    }

    /** Calls @p call with the table and the key of an identity; -1 for a kind without a table. */
    template <typename Call>
    std::int32_t withKey(const ExternalGUID& guid, Call call) {
        switch (guid.getType()) {
        case ExternalGUID::GUIDTypeIFCGlobalID:
            return call(globalIds, guid.getIFCGlobalID());
        case ExternalGUID::GUIDTypePX:
            return call(pxGuids, &guid.getPXGUID());
        case ExternalGUID::GUIDTypeHalvorneObi: {
            const std::int32_t obi = guid.getHalvorneObi();
            return call(halvorneObis, &obi);
        }
        default:
            return ExternalGUIDRuntimeID_None;
        }
    }
};

ExternalGUIDDatabase::ExternalGUIDDatabase() : state_(new(std::nothrow) State) {
}

ExternalGUIDDatabase::~ExternalGUIDDatabase() {
    delete state_;
}

ExternalGUIDRuntimeID_e ExternalGUIDDatabase::insertGUID(const ExternalGUID& guid) {
    if (state_ == nullptr) {
        return ExternalGUIDRuntimeID_None;
    }
    if (guid.getType() == ExternalGUID::GUIDTypeSpatialHash) {
        return static_cast<ExternalGUIDRuntimeID_e>(state_->spatialHashes.insert(guid.getSpatialHash()));
    }
    return static_cast<ExternalGUIDRuntimeID_e>(state_->withKey(
        guid, [this](auto& table, const void* key) { return table.findOrInsert(key, state_->nextKeyId); }));
}

ExternalGUIDRuntimeID_e ExternalGUIDDatabase::findGUID(const ExternalGUID& guid) {
    if (state_ == nullptr) {
        return ExternalGUIDRuntimeID_None;
    }
    if (guid.getType() == ExternalGUID::GUIDTypeSpatialHash) {
        return static_cast<ExternalGUIDRuntimeID_e>(state_->spatialHashes.find(guid.getSpatialHash()));
    }
    return static_cast<ExternalGUIDRuntimeID_e>(
        state_->withKey(guid, [](const auto& table, const void* key) { return table.find(key); }));
}

ExternalGUID ExternalGUIDDatabase::findGUID(ExternalGUIDRuntimeID_e id) {
    if (state_ == nullptr) {
        return ExternalGUID();
    }
    if (id >= 0) {
        return state_->guidOfNode(static_cast<unsigned int>(id));
    }
    GlobalId globalId;
    if (state_->globalIds.findKey(id, globalId)) {
        return guidOfGlobalId(globalId);
    }
    PXGUID_t px;
    if (state_->pxGuids.findKey(id, px)) {
        return ExternalGUID::fromPX(px);
    }
    std::int32_t obi = 0;
    if (state_->halvorneObis.findKey(id, obi)) {
        return ExternalGUID::fromHalvorneObi(obi);
    }
    return ExternalGUID();
}

} // namespace ImportCommon
