#include "studio/scene/settings/stored_block.h"

#include <cstdint>
#include <fmt/format.h>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "persist/stored_fields.h"
#include "studio/scene/settings/setting_values.h"
#include "studio/util/error.h"
#include "studio/util/json_numbers.h"
#include "studio/util/text.h"

namespace tavora::studio {
namespace {

/// Visits the values of `table` in the order in which a block stores them. For each item it
/// calls `items`, a Reader or Writer, which reads it into the settings or writes it from
/// them.
template <class Items, class Value>
void visitFields(std::span<const StoredField> table, Items& items, Value& settings);

template <class Items, class Value>
void visitValue(const StoredField& field, Items& items, Value& value) {
    switch (field.kind) {
        case FieldKind::Boolean:
        case FieldKind::Choice:
        case FieldKind::Integer:
        case FieldKind::Reserved:
            return items.integer(field, value);
        case FieldKind::Fraction:
            return items.number(field, value);
        case FieldKind::Color:
            items.color(field, value);
            for (std::size_t i = 0; i < 3; ++i)
                items.number(field, value[i]);
            return;
        case FieldKind::Zones:
            for (std::size_t i = 0, count = items.count(field, value); i < count; ++i)
                visitFields(storedZoneFields, items, value[i]);
            return;
        case FieldKind::Lights:
            for (std::size_t i = 0, count = items.count(field, value); i < count; ++i)
                items.text(field, value[i]);
            return;
    }
}

template <class Items, class Value>
void visitFields(std::span<const StoredField> table, Items& items, Value& settings) {
    for (const StoredField& field : table) {
        if (auto* value = items.valueOf(field, settings)) visitValue(field, items, *value);
    }
}

/// Reads items from a `Source`, each of the kind that the table says. Source::take<T>()
/// returns the next item, or nothing when that is of another kind or there is none.
template <class Source>
class Reader {
  public:
    explicit Reader(Source& source) : source_(source), version_(next<std::int32_t>("version")) {}

    Settings* valueOf(const StoredField& field, Settings& settings) {
        Settings& value = settings[std::string(field.name)];
        if (version_ >= field.firstVersion) return &value;
        value = initialValue(field);
        return nullptr;
    }
    void integer(const StoredField& field, Settings& value) {
        value = valueOfInteger(field, next<std::int32_t>(field.name));
    }
    void number(const StoredField& field, Settings& value) {
        if (field.flagInVersion1 && version_ == 1) {
            value = next<std::int32_t>(field.name) != 0 ? 1.0 : 0.0;
        } else {
            value = jsonOfFloat(next<float>(field.name));
        }
    }
    /// Reads a light's name, cut as the module cuts it.
    void text(const StoredField& field, Settings& value) {
        const auto name = next<std::string>(field.name);
        value = std::string(cutText(name.c_str(), maxLightNameBytes));
    }
    void color(const StoredField&, Settings& value) { value = Settings::array(); }
    std::size_t count(const StoredField& field, Settings& value) {
        const auto count = next<std::int32_t>(field.name);
        if (count > maxStoredEntries) {
            throw Error(Fault::Scene, fmt::format("stored settings are damaged: {} {} entries",
                                                  count, field.name));
        }
        value = Settings::array();
        return count > 0 ? static_cast<std::size_t>(count) : 0;
    }

  private:
    template <class Item>
    Item next(std::string_view field) {
        if (std::optional<Item> item = source_.template take<Item>()) return *std::move(item);
        throw Error(Fault::Scene,
                    fmt::format("stored settings are damaged: they {} at {}",
                                source_.atEnd() ? "end" : "hold something else", field));
    }

    Source& source_;
    std::int32_t version_;
};

class BlockSource {
  public:
    explicit BlockSource(const StateBlock& block) : block_(block) {}

    bool atEnd() const { return next_ == block_.size(); }
    template <class Item>
    std::optional<Item> take() {
        const Item* item = atEnd() ? nullptr : std::get_if<Item>(&block_[next_]);
        if (item == nullptr) return {};
        ++next_;
        return *item;
    }

  private:
    const StateBlock& block_;
    std::size_t next_ = 0;
};

template <class Item>
std::optional<Item> itemOfJson(const Settings& value) {
    if constexpr (std::is_same_v<Item, std::int32_t>) return integerOfJson(value);
    if constexpr (std::is_same_v<Item, float>) return floatOfJson(value);
    if constexpr (std::is_same_v<Item, std::string>)
        return value.is_string() ? std::optional(value.get<std::string>()) : std::nullopt;
}

/// The item whose kind follows from how its JSON is written.
std::optional<StateItem> itemBySpelling(const Settings& value) {
    if (value.is_string()) return value.get<std::string>();
    if (value.is_number_integer()) return itemOfJson<std::int32_t>(value);
    return itemOfJson<float>(value);
}

/// Items in a JSON array. Keeps the items that were taken.
class JsonSource {
  public:
    explicit JsonSource(const Settings& items) : items_(items) {}

    bool atEnd() const { return taken_.size() == items_.size(); }
    template <class Item>
    std::optional<Item> take() {
        if (atEnd()) return {};
        std::optional<Item> item = itemOfJson<Item>(items_[taken_.size()]);
        if (item) taken_.emplace_back(*item);
        return item;
    }
    std::optional<StateBlock> takeRest() {
        while (!atEnd()) {
            std::optional<StateItem> item = itemBySpelling(items_[taken_.size()]);
            if (!item) return {};
            taken_.push_back(*std::move(item));
        }
        return std::move(taken_);
    }

  private:
    const Settings& items_;
    StateBlock taken_;
};

class Writer {
  public:
    StateBlock block{blockVersion};

    const Settings* valueOf(const StoredField& field, const Settings& settings) const {
        const auto value = settings.find(std::string(field.name));
        if (value != settings.end()) return &*value;
        throw Error(Fault::Scene,
                    fmt::format("settings: {} is missing; give it a value", field.name));
    }
    void integer(const StoredField& field, const Settings& value) {
        add(field, value, integerOfValue(field, value));
    }
    void number(const StoredField& field, const Settings& value) {
        add(field, value, floatOfJson(value));
    }
    void text(const StoredField& field, const Settings& value) {
        add(field, value, itemOfJson<std::string>(value));
    }
    void color(const StoredField& field, const Settings& value) const {
        if (!value.is_array() || value.size() != 3) refuseKind(field, value);
    }
    std::size_t count(const StoredField& field, const Settings& value) {
        if (!value.is_array() || value.size() > maxStoredEntries) refuseKind(field, value);
        block.emplace_back(static_cast<std::int32_t>(value.size()));
        return value.size();
    }

  private:
    template <class Item>
    void add(const StoredField& field, const Settings& value, std::optional<Item> item) {
        if (!item) refuseKind(field, value);
        block.emplace_back(*std::move(item));
    }
    [[noreturn]] static void refuseKind(const StoredField& field, const Settings& value) {
        refuseValue("settings", field, "of the kind that is stored", value);
    }
};

template <class Source>
Settings read(Source source) {
    Settings settings = Settings::object();
    Reader reader(source);
    visitFields(storedFields, reader, settings);
    return settings;
}

}  // namespace

Settings settingsOf(const StateBlock& block) {
    return read(BlockSource(block));
}

StateBlock blockOf(const Settings& settings) {
    Writer writer;
    visitFields(storedFields, writer, settings);
    return std::move(writer.block);
}

std::optional<StateBlock> blockOfItems(const nlohmann::ordered_json& items) {
    JsonSource source(items);
    try {
        read<JsonSource&>(source);
    } catch (const Error&) {
        // settingsOf() will throw for the block too, where the surface's name is known.
    }
    return source.takeRest();
}

}  // namespace tavora::studio
