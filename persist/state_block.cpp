#include "persist/state_block.h"

#include <iterator>

#include "persist/stored_fields.h"
#include "plugin/record/list_builder.h"
#include "plugin/record/services.h"
#include "plugin/record/zone.h"

namespace tavora {
namespace {

/// Shows the visitor every stored field with its place in the record, in block
/// order.
template <class Visitor>
void visitFields(ShaderInstance& record, Visitor& visit) {
    const StoredField* field = std::begin(storedFields);
#define TAVORA_STORED_FIELD(member, ...) visit(*field++, record.member);
#include "persist/stored_fields.def"
}

/// The same for one zone.
template <class Visitor>
void visitFields(Zone& zone, Visitor& visit) {
    const StoredField* field = std::begin(storedZoneFields);
#define TAVORA_STORED_ZONE_FIELD(member, ...) visit(*field++, zone.member);
#include "persist/stored_fields.def"
}

template <class Entry>
std::int32_t countOf(const Entry* head) {
    std::int32_t count = 0;
    for (; head != nullptr; head = head->next)
        ++count;
    return count;
}

/// Writes each field that it is shown.
class Writer {
  public:
    explicit Writer(const HostSaveState& state) : state_(state) {}

    void integer(std::int32_t value) { state_.writeInt(state_.data, &value, 1); }

    void operator()(const StoredField&, const std::int32_t& value) { integer(value); }
    void operator()(const StoredField&, const float& value) {
        state_.writeFloat(state_.data, &value, 1);
    }
    void operator()(const StoredField&, const float (&color)[3]) {
        state_.writeFloat(state_.data, color, 3);
    }
    void operator()(const StoredField&, Zone* head) {
        integer(countOf(head));
        for (; head != nullptr; head = head->next)
            visitFields(*head, *this);
    }
    void operator()(const StoredField&, const LightEntry* head) {
        integer(countOf(head));
        for (; head != nullptr; head = head->next)
            state_.writeString(state_.data, head->name);
    }

  private:
    const HostSaveState& state_;
};

/// Reads each field that it is shown, as far as the block's version holds it.
/// Keeps the lists it read; after the first fault it reads nothing more.
class Reader {
  public:
    explicit Reader(const HostLoadState& state) : state_(state) { integer(version_); }

    LoadOutcome outcome() const { return outcome_; }
    bool sawTransparency() const { return sawTransparency_; }
    Zone* takeZones() { return zones_.take(); }
    LightEntry* takeLights() { return lights_.take(); }

    void operator()(const StoredField& field, std::int32_t& value) {
        if (holds(field)) integer(value);
    }
    void operator()(const StoredField& field, float (&color)[3]) {
        if (holds(field)) expect(state_.readFloat(state_.data, color, 3) == 3);
    }
    void operator()(const StoredField& field, float& value) {
        if (!holds(field)) return;
        if (field.flagInVersion1 && version_ == 1) {
            std::int32_t flag = 0;
            integer(flag);
            value = flag != 0 ? 1.0f : 0.0f;
        } else {
            expect(state_.readFloat(state_.data, &value, 1) == 1);
        }
    }
    void operator()(const StoredField& field, Zone* /*head*/) {
        for (std::int32_t left = count(field); left > 0 && ok(); --left)
            readZone();
    }
    void operator()(const StoredField& field, LightEntry* /*head*/) {
        for (std::int32_t left = count(field); left > 0 && ok(); --left)
            readLight();
    }

  private:
    bool ok() const { return outcome_ == LoadOutcome::complete; }
    bool holds(const StoredField& field) const { return ok() && version_ >= field.firstVersion; }
    void expect(bool condition, LoadOutcome otherwise = LoadOutcome::damaged) {
        if (!condition) outcome_ = otherwise;
    }

    void integer(std::int32_t& value) { expect(state_.readInt(state_.data, &value, 1) == 1); }

    std::int32_t count(const StoredField& field) {
        std::int32_t count = 0;
        if (holds(field)) integer(count);
        if (ok()) expect(count <= maxStoredEntries);
        return count;
    }

    void readZone() {
        Zone zone;
        visitFields(zone, *this);
        if (!ok()) return;
        if (zone.trans > 0.0f) sawTransparency_ = true;
        expect(zones_.append(zone), LoadOutcome::outOfMemory);
    }

    void readLight() {
        char name[150] = {};
        expect(state_.readString(state_.data, name, sizeof name) == 1);
        if (ok()) expect(lights_.append(lightNamed(name)), LoadOutcome::outOfMemory);
    }

    const HostLoadState& state_;
    std::int32_t version_ = 0;
    LoadOutcome outcome_ = LoadOutcome::complete;
    bool sawTransparency_ = false;
    ListBuilder<Zone> zones_;
    ListBuilder<LightEntry> lights_;
};

void reportRefusal(LoadOutcome outcome) {
    msg->error(outcome == LoadOutcome::damaged
                   ? "Tavora: the stored settings of a surface are damaged and were not loaded"
                   : "Tavora: not enough memory to load the stored settings of a surface",
               "The surface keeps the settings it had: check them before you save the file");
}

}  // namespace

HostError Save(HostInstance instance, const HostSaveState* state) {
    auto& record = *static_cast<ShaderInstance*>(instance);
    Writer writer(*state);
    writer.integer(blockVersion);
    visitFields(record, writer);
    record.zoneCursor = record.zoneList;
    record.lightCursor = record.lightList;
    return nullptr;
}

LoadOutcome loadBlock(ShaderInstance& record, const HostLoadState& state) {
    ShaderInstance loaded = record;
    Reader reader(state);
    visitFields(loaded, reader);
    if (reader.outcome() != LoadOutcome::complete) return reader.outcome();

    freeList(record.zoneList);
    freeList(record.lightList);
    loaded.zoneList = loaded.zoneCursor = loaded.selectedZone = reader.takeZones();
    loaded.lightList = loaded.lightCursor = reader.takeLights();
    loaded.transparencyUsed = reader.sawTransparency() ? 1 : 0;
    record = loaded;
    return LoadOutcome::complete;
}

HostError Load(HostInstance instance, const HostLoadState* state) {
    const LoadOutcome outcome = loadBlock(*static_cast<ShaderInstance*>(instance), *state);
    if (outcome != LoadOutcome::complete) reportRefusal(outcome);
    return nullptr;
}

}  // namespace tavora
