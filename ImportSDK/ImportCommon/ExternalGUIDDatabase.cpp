#include <DbFast/dbfast.h>
#include <ImportCommon/DxKDTree.h>
#include <ImportCommon/ExternalGUIDDatabase.h>

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

/** The identities of one kind: rows of a runtime id and a key of fixed size. A table without memory holds nothing. */
class KeyTable {
public:
    /** A row; the key is never longer than a GlobalId. */
    struct Row_s {
        std::int32_t runtimeId;
        char key[globalIdSize];
    };

    KeyTable(const dbf_tablespec& tableSpec, const dbf_fieldspec* fields, const dbf_indexspec& byRuntimeIdSpec,
             const std::int32_t* byRuntimeIdFields, const dbf_indexspec& byKeySpec, const std::int32_t* byKeyFields,
             std::size_t keySize)
        : table_(dbf_createtable(&tableSpec, fields)),
          byRuntimeId_(dbf_createindex(table_, &byRuntimeIdSpec, byRuntimeIdFields)),
          byKey_(dbf_createindex(table_, &byKeySpec, byKeyFields)),
          keySize_(keySize) {}

    ~KeyTable() {
        dbf_dropindex(byKey_);
        dbf_dropindex(byRuntimeId_);
        dbf_droptable(table_);
    }

    KeyTable(const KeyTable&) = delete;
    KeyTable& operator=(const KeyTable&) = delete;

    /** The runtime id of a key, or -1. */
    std::int32_t find(const void* key) const {
        Row_s row;
        std::memcpy(row.key, key, keySize_);
        return isUsable() && dbf_select(byKey_, &row) == DBF_OK ? row.runtimeId : ExternalGUIDRuntimeID_None;
    }

    bool findRow(std::int32_t runtimeId, Row_s& row) const {
        row.runtimeId = runtimeId;
        return isUsable() && dbf_select(byRuntimeId_, &row) == DBF_OK;
    }

    /** The runtime id of a key; one that is new gets @p nextId, which counts down even when it can't be stored. */
    std::int32_t findOrInsert(const void* key, std::int32_t& nextId) {
        if (!isUsable() || nextId == INT32_MIN) {
            return find(key);
        }
        // Most keys are new, and the insert finds out by itself when one is not.
        Row_s row;
        row.runtimeId = nextId;
        std::memcpy(row.key, key, keySize_);
        const int result = dbf_insert(table_, &row);
        if (result == DBF_DUPLICATE) {
            return find(key);
        }
        --nextId;
        return result == DBF_OK ? row.runtimeId : ExternalGUIDRuntimeID_None;
    }

private:
    bool isUsable() const { return byRuntimeId_ != nullptr && byKey_ != nullptr; }

    dbf_table* table_;
    dbf_index* byRuntimeId_;
    dbf_index* byKey_;
    std::size_t keySize_;
};

/** An identity of a GlobalId with all its characters, a zero among them included. */
ExternalGUID guidOfGlobalId(const char* globalId) {
    char record[ExternalGUID::PayloadOffset + globalIdSize] = {};
    const std::uint32_t type = ExternalGUID::GUIDTypeIFCGlobalID;
    std::memcpy(record, &type, sizeof type);
    std::memcpy(record + ExternalGUID::PayloadOffset, globalId, globalIdSize);
    return ExternalGUID::fromByteStream(sizeof record, record);
}

template <typename T>
T keyOf(const KeyTable::Row_s& row) {
    T key;
    std::memcpy(&key, row.key, sizeof key);
    return key;
}

} // namespace

struct ExternalGUIDDatabase::State_s {
    CDxKDTree spatialHashes{ExternalGUID::SpatialHashSize};
    KeyTable globalIds{tblIFCGlobalIDSpec,
                       fldIFCGlobalIDSpec,
                       idxIFCGlobalIDByRuntimeIDSpec,
                       idxIFCGlobalIDByRuntimeIDFields,
                       idxIFCGlobalIDByIFCGlobalIDSpec,
                       idxIFCGlobalIDByIFCGlobalIDFields,
                       globalIdSize};
    KeyTable pxGuids{tblPXGUIDGlobalIDSpec,
                     fldPXGUIDGlobalIDSpec,
                     idxPXGUIDGlobalIDByRuntimeIDSpec,
                     idxPXGUIDGlobalIDByRuntimeIDFields,
                     idxPXGUIDGlobalIDByPXGUIDGlobalIDSpec,
                     idxPXGUIDGlobalIDByPXGUIDGlobalIDFields,
                     sizeof(PXGUID_t)};
    KeyTable halvorneObis{tblHALVORNEGUIDGlobalIDSpec,
                          fldHALVORNEGUIDGlobalIDSpec,
                          idxHALVORNEGUIDGlobalIDByRuntimeIDSpec,
                          idxHALVORNEGUIDGlobalIDByRuntimeIDFields,
                          idxHALVORNEGUIDGlobalIDByHALVORNEGUIDGlobalIDSpec,
                          idxHALVORNEGUIDGlobalIDByHALVORNEGUIDGlobalIDFields,
                          sizeof(std::int32_t)};
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

ExternalGUIDDatabase::ExternalGUIDDatabase() : state_(new (std::nothrow) State_s) {
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
        guid, [this](KeyTable& table, const void* key) { return table.findOrInsert(key, state_->nextKeyId); }));
}

ExternalGUIDRuntimeID_e ExternalGUIDDatabase::findGUID(const ExternalGUID& guid) {
    if (state_ == nullptr) {
        return ExternalGUIDRuntimeID_None;
    }
    if (guid.getType() == ExternalGUID::GUIDTypeSpatialHash) {
        return static_cast<ExternalGUIDRuntimeID_e>(state_->spatialHashes.find(guid.getSpatialHash()));
    }
    return static_cast<ExternalGUIDRuntimeID_e>(
        state_->withKey(guid, [](KeyTable& table, const void* key) { return table.find(key); }));
}

ExternalGUID ExternalGUIDDatabase::findGUID(ExternalGUIDRuntimeID_e id) {
    KeyTable::Row_s row;
    if (state_ != nullptr && id >= 0) {
        return state_->guidOfNode(static_cast<unsigned int>(id));
    }
    if (state_ != nullptr && state_->globalIds.findRow(id, row)) {
        return guidOfGlobalId(row.key);
    }
    if (state_ != nullptr && state_->pxGuids.findRow(id, row)) {
        return ExternalGUID::fromPX(keyOf<PXGUID_t>(row));
    }
    if (state_ != nullptr && state_->halvorneObis.findRow(id, row)) {
        return ExternalGUID::fromHalvorneObi(keyOf<std::int32_t>(row));
    }
    return ExternalGUID();
}

} // namespace ImportCommon
