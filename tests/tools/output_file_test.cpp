#include "files/output_file.h"

#include <csignal>
#include <fcntl.h>
#include <sys/stat.h>

#include "failure.h"
#include "program.h"

using namespace support;
using tools::writeFile;

namespace {

namespace files = std::filesystem;

class OutputFile : public testing::Test {
  protected:
    ScratchDirectory scratch;

    unsigned rights(const std::string& name) {
        return static_cast<unsigned>(files::status(scratch / name).permissions());
    }
    std::string refusal(const std::string& path) {
        try {
            writeFile(path, "new");
        } catch (const tools::Failure& failure) {
            return failure.what();
        }
        return "";
    }
};

} // namespace

TEST_F(OutputFile, HasOrdinaryRights) {
    writeFile(scratch / "a", "new");
    const mode_t mask = umask(0);
    umask(mask);
    EXPECT_EQ(0666U & ~mask, rights("a"));
    EXPECT_EQ("new", bytesOf(scratch / "a"));
}

TEST_F(OutputFile, KeepsTheModeOfTheFileThatItReplaces) {
    for (const auto mode : {0600U, 0640U, 0755U}) {
        writeBytes(scratch / "a", "old");
        chmod((scratch / "a").c_str(), mode);
        writeFile(scratch / "a", "new");
        EXPECT_EQ(mode, rights("a"));
        EXPECT_EQ("new", bytesOf(scratch / "a"));
    }
}

TEST_F(OutputFile, FollowsLinks) {
    files::create_directory(scratch / "deep");
    writeBytes(scratch / "deep/a", "old");
    files::create_symlink("deep/a", scratch / "one");
    files::create_symlink("one", scratch / "two");
    writeFile(scratch / "two", "new");
    EXPECT_TRUE(files::is_symlink(scratch / "one"));
    EXPECT_TRUE(files::is_symlink(scratch / "two"));
    EXPECT_EQ("new", bytesOf(scratch / "deep/a"));

    files::create_symlink("deep/b", scratch / "toNothing");
    writeFile(scratch / "toNothing", "new");
    EXPECT_TRUE(files::is_symlink(scratch / "toNothing"));
    EXPECT_EQ("new", bytesOf(scratch / "deep/b"));
}

TEST_F(OutputFile, RefusesLinksThatLeadNowhereElse) {
    files::create_symlink("b", scratch / "a");
    files::create_symlink("a", scratch / "b");
    EXPECT_NE(std::string::npos, refusal(scratch / "a").find("symbolic links"));
    EXPECT_TRUE(files::is_symlink(scratch / "a"));
}

TEST_F(OutputFile, TakesNamesOf255Bytes) {
    const std::string name(255, 'n');
    writeFile(scratch / name, "new");
    EXPECT_EQ(std::vector<std::string>{name}, scratch.files());
    EXPECT_NE(std::string::npos, refusal(scratch / std::string(256, 'n')).find("too long"));
}

TEST_F(OutputFile, RefusesWhatIsNoFile) {
    EXPECT_NE(std::string::npos, refusal(scratch / ".").find("is a directory"));
    mkfifo((scratch / "pipe").c_str(), 0600);
    EXPECT_NE(std::string::npos, refusal(scratch / "pipe").find("no ordinary file"));
    EXPECT_NE(std::string::npos, refusal("/dev/null").find("no ordinary file"));
    EXPECT_NE(std::string::npos, refusal(scratch / "none/a").find("No such file or directory"));
}

TEST_F(OutputFile, GoesAwayUnlessItIsMovedToItsPlace) {
    writeBytes(scratch / "a", "old");
    {
        tools::OutputFile file(scratch / "a");
        file.write("new");
        EXPECT_EQ(2U, scratch.files().size());
    }
    EXPECT_EQ(std::vector<std::string>{"a"}, scratch.files());
    EXPECT_EQ("old", bytesOf(scratch / "a"));
}

TEST_F(OutputFile, SignalsThatEndTheProgramLeaveNothing) {
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        const pid_t child = fork();
        if (child == 0) {
            std::signal(signal, SIG_DFL);
            tools::OutputFile file(scratch / "a");
            file.write("new");
            std::raise(signal);
            _exit(0);
        }
        int status = 0;
        waitpid(child, &status, 0);
        EXPECT_TRUE(WIFSIGNALED(status));
        EXPECT_EQ(signal, WTERMSIG(status));
        EXPECT_TRUE(scratch.files().empty()) << scratch.files().front();
    }
}

TEST_F(OutputFile, SignalsThatTheProgramIgnoresStayIgnored) {
    const pid_t child = fork();
    if (child == 0) {
        std::signal(SIGHUP, SIG_IGN);
        tools::OutputFile file(scratch / "a");
        std::raise(SIGHUP);
        file.moveToItsPlace();
        _exit(7);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(7, WEXITSTATUS(status));
    EXPECT_EQ(std::vector<std::string>{"a"}, scratch.files());
}
