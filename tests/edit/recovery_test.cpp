#include <cmath>
#include <csignal>
#include <cstdlib>
#include <functional>
#include <gmock/gmock.h>
#include <random>
#include <set>
#include <sys/wait.h>
#include <unistd.h>

#include "studio/files/atomic_file.h"
#include "studio/util/error.h"
#include "tests/edit/edit_test.h"
#include "tests/files/small_disk.h"

namespace tavora::studio {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class RecoveredWork : public EditTest {
  protected:
    void abandon(const std::function<void(Document&)>& work) {
        const auto document = open();
        work(*document);
        document->recovery.write();
    }

    static std::multiset<std::string> suffixes(const fs::path& folder) {
        std::multiset<std::string> all;
        for (const auto& entry : fs::directory_iterator(folder))
            if (entry.is_regular_file()) all.insert(entry.path().extension());
        return all;
    }
    std::multiset<std::string> kept() const { return suffixes(state_); }
    fs::path keptFile() const {
        for (const auto& entry : fs::directory_iterator(state_))
            if (entry.path().extension() == ".json") return entry.path();
        throw std::runtime_error("no recovery file");
    }

    const fs::path state_ = folder_ / "state/tavora/recovery";
};

/// Another process that works until it is killed, and says after each round that it goes on.
struct Worker {
    explicit Worker(const std::function<void(int round)>& work) {
        EXPECT_EQ(::pipe(ends), 0);
        process = ::fork();
        for (int round = 1; process == 0; ++round) {
            work(round);
            if (::write(ends[1], "x", 1) != 1) ::_exit(1);
        }
        ::close(ends[1]);
    }
    void waitForRound() const {
        char byte = 0;
        ASSERT_EQ(::read(ends[0], &byte, 1), 1) << "it failed by itself";
    }
    void kill() const {
        ::kill(process, SIGKILL);
        ::waitpid(process, nullptr, 0);
        ::close(ends[0]);
    }

    int ends[2] = {-1, -1};
    pid_t process = -1;
};

TEST_F(RecoveredWork, IsAllThatAKilledSessionSaidIsDoneAndNothingElseIsLeftOfIt) {
    std::mt19937 random(5);
    int recovered = 0;
    for (const int rounds : {1, 2, 3, 4, 5, 7, 9, 12, 16, 20}) {
        std::unique_ptr<Document> document;
        const Worker other([&](int round) {
            if (document == nullptr) document = open();
            const StateBlock block =
                withChanges(sampleBlock(), {{"edgeCoverage", round / 1e5}}, "test", {});
            set(*document, {{0, shader(block)}, {1, shader(block)}});
            if (round % 3 == 0) document->save();
            edit(*document, 2, round / 1e5);
            document->recovery.write();
        });
        for (int i = 0; i < rounds; ++i) {
            other.waitForRound();
            EXPECT_FALSE(open()->recovery.isOffered()) << "a live session's work is its own";
        }
        ::usleep(static_cast<useconds_t>(random() % 4000));
        other.kill();

        document = open();
        const auto before = stateOf(*document);
        // None when it was killed between saving and its next edit.
        if (document->recovery.isOffered()) {
            document->recovery.takeOver();
            ++recovered;
            EXPECT_TRUE(document->settings.isModified());
            EXPECT_EQ(undoAll(*document), 1U);
            EXPECT_EQ(stateOf(*document), before);
            document->undo.redo();
        }
        const double value = named(*document, 0)["edgeCoverage"];
        EXPECT_GE(value, rounds / 1e5) << "what was reported done is there";
        EXPECT_EQ(named(*document, 1)["edgeCoverage"], value);
        document->recovery.discard();
        EXPECT_THAT(kept(), IsEmpty());
        EXPECT_THAT(suffixes(folder_.path()), ElementsAre(".glb"));
    }
    EXPECT_GT(recovered, 0);
}

TEST_F(RecoveredWork, IsOfferedUntilItIsTakenSavedOrDiscarded) {
    abandon([](Document& document) { edit(document, 0, 0.5); });
    abandon([](Document& document) { edit(document, 0, 0.6); });  // asked nobody about the first
    {
        const auto first = open();
        const auto second = open();
        ASSERT_TRUE(first->recovery.isOffered() && second->recovery.isOffered());
        first->recovery.takeOver();
        EXPECT_FALSE(first->recovery.isOffered());
        second->recovery.discard();
        EXPECT_EQ(named(*first, 0)["edgeCoverage"], 0.5);
    }
    abandon([](Document& document) {
        document.recovery.takeOver();
        edit(document, 1, 0.7);
    });
    const auto document = open();
    ASSERT_TRUE(document->recovery.isOffered());
    document->recovery.takeOver();
    EXPECT_EQ(named(*document, 0)["edgeCoverage"], 0.5);
    EXPECT_EQ(named(*document, 1)["edgeCoverage"], 0.7);
    EXPECT_THAT(kept(), ElementsAre(".json", ".lock"));
    const fs::path file = keptFile();
    set(*document, {{2, std::nullopt}});
    document->recovery.write();
    const std::string work = bytesOf(file);
    document->save();
    EXPECT_THAT(kept(), IsEmpty()) << "what is saved needs no second copy";
    putBytes(file, work);  // as if it had died before it could remove it
    putBytes(file.string() + ".lock", "");
    putBytes(state_ / "another-2.json.lock", "");
    EXPECT_FALSE(open()->recovery.isOffered());
    EXPECT_THAT(kept(), IsEmpty());
    putBytes(file, work);
    edit(*document, 0, 0.6);
    document->save();
    EXPECT_TRUE(open()->recovery.isOffered()) << "the scene says something else";
    writeScene({"Other"});
    EXPECT_TRUE(open()->recovery.isOffered()) << "also where all of its surfaces are gone";
}

TEST_F(RecoveredWork, GoesNotBeforeTheFileThatTakesItsPlaceIsWhole) {
    abandon([](Document& document) { edit(document, 0, 0.5); });
    for (int session = 0; session < 2; ++session) {
        const auto document = open();
        if (session == 0) edit(*document, 3, 0.7);
        if (session == 0) document->recovery.write();
        document->recovery.takeOver();
        EXPECT_EQ(named(*document, 0)["edgeCoverage"], 0.5);
        EXPECT_EQ(named(*document, 3)["edgeCoverage"], 0.7);
    }
}

TEST_F(RecoveredWork, IsWrittenOnceForOneChangeAndLeavesLivingSessionsAlone) {
    AtomicFile unfinished(folder_ / "other.glb");
    const auto document = open();
    document->recovery.write();
    EXPECT_FALSE(exists(state_));
    edit(*document, 0, 0.5);
    {
        const SmallDisk full(64);
        EXPECT_THROW(document->recovery.write(), Error);
    }
    document->recovery.write();
    EXPECT_FALSE(open()->recovery.isOffered());
    unfinished.commit();
    fs::remove(keptFile());
    document->recovery.write();
    EXPECT_THAT(kept(), ElementsAre(".lock"));
    edit(*document, 0, 0.6);
    document->recovery.write();
    EXPECT_THAT(kept(), ElementsAre(".json", ".lock"));
    undoAll(*document);
    document->recovery.write();
    EXPECT_THAT(kept(), IsEmpty());
}

TEST_F(RecoveredWork, IsExactAndGoesByName) {
    StateBlock odd = sampleBlock({}, 0, {"F\xc3\xbcll \"1\""});
    odd[2] = std::nanf("");
    abandon([&](Document& document) {
        set(document, {{0, {}}, {1, shader(odd, false)}, {3, shader(sampleBlock())}});
    });
    const std::string rewrite =
        "node -e 'const fs = require(\"fs\"), file = process.argv[1];"
        "fs.writeFileSync(file, JSON.stringify(JSON.parse(fs.readFileSync(file))))' ";
    ASSERT_EQ(std::system((rewrite + keptFile().string()).c_str()), 0) << "needs nodejs";
    writeScene({"New", "Hair"});
    const auto document = open();
    EXPECT_THAT(document->recovery.takeOver(),
                ElementsAre(HasSubstr("was changed"), HasSubstr("\"Glass\"")));
    EXPECT_EQ(document->settings.at(1), shader(odd, false));
    EXPECT_EQ(document->settings.at(2), shader(sampleBlock()));
}

TEST_F(RecoveredWork, ThatIsDamagedIsRefusedAndKept) {
    abandon([](Document& document) { edit(document, 0, 0.5); });
    const fs::path file = keptFile();
    const std::string whole = bytesOf(file);
    const auto damage = [&](const std::string& from, const std::string& to) {
        std::string text = whole;
        return text.replace(text.find(from), from.size(), to);
    };
    for (const std::string& text :
         {std::string(), whole.substr(0, whole.size() / 2), std::string("[]"),
          damage("\"state\":[6,", "\"state\":[6,\"x\","), damage("\"name\"", "\"nome\""),
          damage("\"surfaces\": [", "\"surfaces\": [7,"),
          damage("\"version\": 1", "\"version\": 2"), damage("\"hash\": \"", "\"hash\": \"x")}) {
        putBytes(file, text);
        const auto document = open();
        const auto before = stateOf(*document);
        EXPECT_TRUE(document->recovery.isOffered());
        EXPECT_THAT(refusal([&] { document->recovery.takeOver(); }), HasSubstr(".damaged")) << text;
        EXPECT_FALSE(document->recovery.isOffered());
        EXPECT_EQ(stateOf(*document), before);
        EXPECT_EQ(bytesOf(file.string() + ".damaged"), text);
    }
}

}  // namespace
}  // namespace tavora::studio
