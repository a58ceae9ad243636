#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <thread>

#include "player/lingo/Session.h"
#include "support/ScratchFolder.h"

namespace krl::player {
namespace {

namespace fs = std::filesystem;

Bitmap greyPicture(int32_t width, int32_t height, uint8_t level) {
    return {width, height, std::vector<Pixel>(size_t(width) * size_t(height), {level, level, level, 200}),
            nullptr};
}

std::string run(SessionOptions options, const fs::path& folder, const std::string& body) {
    std::ofstream(folder / "script.ls") << "on main args\n" << body << "\nend\n";
    std::ostringstream printed;
    options.output = &printed;
    Session session(options);
    try {
        session.run(folder / "script.ls", {"one", "two"});
    } catch (const ScriptError& error) {
        return error.message();
    }
    return printed.str();
}

TEST(SessionApply, RunsACallOnAPicture) {
    Session session({});
    for (const char* call :
         {"krlImageBrightness(300, #RGB)", "brightness(300, #rgb)", " BRIGHTNESS ( 300 , #RGB )"}) {
        Bitmap picture = greyPicture(3, 2, 40);
        const CallOutcome outcome = session.apply(picture, call);
        EXPECT_TRUE(outcome.ok());
        EXPECT_EQ(outcome.shown, "[#error: 0]");
        ASSERT_EQ(picture.pixels.size(), 6u);
        for (const Pixel& pixel : picture.pixels) EXPECT_EQ(pixel, (Pixel{255, 255, 255, 200}));
    }
    EXPECT_TRUE(session.close().none());
}

TEST(SessionApply, ReportsTheMethodsOwnMessage) {
    Session session({});
    Bitmap picture = greyPicture(1, 1, 40);
    const CallOutcome outcome = session.apply(picture, "krlImageBrightness(\"x\", #RGB)");
    EXPECT_EQ(outcome.error, "Brightness input failure (Image)");
    EXPECT_EQ(outcome.shown, "[#error: \"Brightness input failure (Image)\"]");
    EXPECT_EQ(picture.pixels.front(), (Pixel{40, 40, 40, 200}));
}

TEST(SessionApply, ReturnsThePictureInEveryCase) {
    Session session({});
    for (const char* call : {"nonsense(1)", "brightness(", "brightness(undefined(), #RGB)", "1 + 2", "",
                             "brightness(halt(), #RGB)"}) {
        Bitmap picture = greyPicture(2, 2, 40);
        EXPECT_THROW(session.apply(picture, call), ScriptError) << call;
        EXPECT_EQ(picture.pixels.size(), 4u);
    }
    EXPECT_TRUE(session.close().none());
}

TEST(SessionApply, SuggestsTheNearestMethod) {
    Session session({});
    Bitmap picture = greyPicture(1, 1, 40);
    try {
        session.apply(picture, "brightnes(1, #RGB)");
        FAIL();
    } catch (const ScriptError& error) {
        EXPECT_NE(error.message().find("did you mean krlImageBrightness?"), std::string::npos)
            << error.message();
    }
}

TEST(SessionApply, SessionsRunInParallel) {
    std::vector<std::thread> threads;
    std::vector<LeakReport> left(4);
    for (size_t i = 0; i < left.size(); ++i)
        threads.emplace_back([&left, i] {
            SessionOptions options;
            options.threads = ThreadChoice::One;
            Session session(options);
            Bitmap picture = greyPicture(16, 16, 10);
            for (int pass = 0; pass < 5; ++pass) session.apply(picture, "brightness(10, #RGB)");
            EXPECT_EQ(picture.pixels.front().red, 60);
            left[i] = session.close();
        });
    for (std::thread& thread : threads) thread.join();
    for (const LeakReport& report : left) EXPECT_TRUE(report.none()) << report.text();
}

TEST(SessionRun, CallsMainOrTheFirstHandlerWithAListOfArguments) {
    const test::ScratchFolder folder;
    EXPECT_EQ(run({}, folder.path(), "put args"), "-- [\"one\", \"two\"]\n");
    std::ofstream(folder.path() / "first.ls")
        << "on first args\n  put args[2]\nend\non second\n  put 2\nend\n";
    std::ostringstream printed;
    SessionOptions options;
    options.output = &printed;
    Session session(options);
    session.run(folder.path() / "first.ls", {"a", "b"});
    EXPECT_EQ(printed.str(), "-- \"b\"\n");
}

TEST(SessionRun, ThreadsCanBeChosenForTheScript) {
    const test::ScratchFolder folder;
    SessionOptions options;
    options.threads = ThreadChoice::One;
    EXPECT_EQ(run(options, folder.path(),
                  "x = new(xtra \"KRLImageXtra\")\nput x.krlImageCreateLookupTables(#other)"),
              "-- [#error: 0]\n");
}

TEST(SessionRun, MembersArePicturesOfTheCast) {
    const test::ScratchFolder folder, cast;
    writePicture(cast.path() / "Leaf.pam", greyPicture(5, 4, 9));
    SessionOptions options;
    options.castFolder = cast.path();
    EXPECT_EQ(run(options, folder.path(),
                  "put member(\"leaf\").image.width\nm = member \"LEAF\"\nput m.image.rect, m"),
              "-- 5\n-- rect(0, 0, 5, 4) (member \"leaf\")\n");
    EXPECT_EQ(run(options, folder.path(), "put member(\"leav\").image"),
              "there is no picture for the member \"leav\", did you mean Leaf?");
    EXPECT_EQ(run(options, folder.path(),
                  "member(\"new\").image = image(2, 2, 32)\nput member(\"new\").image.height"),
              "-- 2\n");
}

TEST(SessionRun, SavesInTheOutputFolder) {
    const test::ScratchFolder folder, output;
    SessionOptions options;
    options.outputFolder = output.path();
    EXPECT_EQ(run(options, folder.path(), "image(3, 2, 32).save(\"a.pam\")\nput image(\"a.pam\").width"),
              "-- 3\n");
    EXPECT_TRUE(fs::exists(output.path() / "a.pam"));
    EXPECT_FALSE(fs::exists(folder.path() / "a.pam"));
    EXPECT_EQ(run({}, folder.path(), "image(3, 2, 32).save(\"b.pam\")"), "");
    EXPECT_TRUE(fs::exists(folder.path() / "b.pam"));
}

TEST(SessionRun, ListsFilesInTheirOrder) {
    const test::ScratchFolder folder;
    const fs::path pictures = folder.path() / "pictures";
    fs::create_directories(pictures / "more");
    for (const char* name : {"b.pam", "a.pam", ".hidden.pam"})
        writePicture(pictures / name, greyPicture(1, 1, 7));
    EXPECT_EQ(run({}, folder.path(),
                  "p = the moviePath & \"pictures/\"\nn = 1\n"
                  "repeat while getNthFileNameInFolder(p, n) <> EMPTY\n"
                  "put getNthFileNameInFolder(p, n)\nn = n + 1\nend repeat\n"
                  "put getNthFileNameInFolder(\"pictures\", 0), getNthFileNameInFolder(\"missing\", 1)"),
              "-- \"a.pam\"\n-- \"b.pam\"\n-- \"more\"\n-- \"\" \"\"\n");
}

TEST(Sandbox, FilesOfFoldersElsewhereAreNotListed) {
    const test::ScratchFolder folder, elsewhere;
    writePicture(elsewhere.path() / "secret.pam", greyPicture(1, 1, 7));
    fs::create_directory_symlink(elsewhere.path(), folder.path() / "door");
    for (const std::string& name : {elsewhere.path().string(), std::string("door"), std::string("..")}) {
        const std::string message =
            run({}, folder.path(), "put getNthFileNameInFolder(\"" + name + "\", 1)");
        EXPECT_NE(message.find("outside the folders"), std::string::npos) << name << message;
    }
}

TEST(Sandbox, NothingOutsideTheFoldersIsReadOrWritten) {
    const test::ScratchFolder folder, elsewhere;
    const fs::path secret = elsewhere.path() / "secret.pam";
    writePicture(secret, greyPicture(1, 1, 7));
    fs::create_symlink(secret, folder.path() / "link.pam");
    fs::create_directory_symlink(elsewhere.path(), folder.path() / "door");
    const std::string up = "../" + elsewhere.path().filename().string() + "/";
    for (const std::string& name : {secret.string(), up + "secret.pam", std::string("link.pam"),
                                    std::string("door/secret.pam"), "door/../" + up + "secret.pam"}) {
        const std::string message = run({}, folder.path(), "put image(\"" + name + "\").width");
        EXPECT_NE(message.find("outside the folders that this script may access"), std::string::npos)
            << name << message;
    }
    for (const std::string& name :
         {(elsewhere.path() / "new.pam").string(), up + "new.pam", std::string("door/new.pam")}) {
        const std::string message = run({}, folder.path(), "image(1, 1, 32).save(\"" + name + "\")");
        EXPECT_NE(message.find("outside the folders"), std::string::npos) << name << message;
        EXPECT_FALSE(fs::exists(elsewhere.path() / "new.pam"));
    }
    EXPECT_EQ(run({}, folder.path(), "put member(\"secret\").image").find("there is no picture"), 0u);
    EXPECT_EQ(run({}, folder.path(), "put member(\"link\").image").find("there is no picture"), 0u);
    EXPECT_EQ(run({}, folder.path(), "put script(\"" + up + "other\")").find("there is no script"), 0u);
}

/// The system ends a name at a zero byte, so the file checked would not be the file opened.
TEST(Sandbox, NamesWithControlCharactersAreRefused) {
    const test::ScratchFolder folder, elsewhere;
    writePicture(elsewhere.path() / "secret.pam", greyPicture(1, 1, 7));
    const std::string up = "../" + elsewhere.path().filename().string() + "/";
    const std::string here = "/../../" + folder.path().filename().string() + "/";
    for (const std::string code : {"0", "1", "10", "27", "127"}) {
        const auto name = [&](const std::string& file) {
            return "\"" + up + file + "\" & numToChar(" + code + ") & \"" + here + "x.pam\"";
        };
        const std::string refusal = "the file name contains a control character, code " + code + ", after \"";
        EXPECT_EQ(run({}, folder.path(), "image(1, 1, 32).save(" + name("new.pam") + ")"),
                  refusal + up + "new.pam\"");
        EXPECT_EQ(run({}, folder.path(), "put image(" + name("secret.pam") + ").width"),
                  refusal + up + "secret.pam\"");
        EXPECT_EQ(run({}, folder.path(), "put member(" + name("secret.pam") + ").image"),
                  refusal + up + "secret.pam\"");
        EXPECT_EQ(run({}, folder.path(), "put script(" + name("secret.pam") + ")"),
                  refusal + up + "secret.pam\"");
    }
    EXPECT_FALSE(fs::exists(elsewhere.path() / "new.pam"));
}

TEST(Sandbox, FoldersCanBeAdded) {
    const test::ScratchFolder folder, elsewhere;
    writePicture(elsewhere.path() / "more.pam", greyPicture(4, 1, 7));
    SessionOptions options;
    options.allowedFolders = {elsewhere.path()};
    const std::string full = (elsewhere.path() / "more.pam").string();
    EXPECT_EQ(run(options, folder.path(), "put image(\"" + full + "\").width, image(\"more.pam\").width"),
              "-- 4 4\n");
    EXPECT_EQ(run(options, folder.path(), "image(1, 1, 32).save(\"" + full + "\")"), "");
    EXPECT_EQ(readPicture(elsewhere.path() / "more.pam").width, 1);
    EXPECT_EQ(run(options, folder.path(), "put image(\"none.pam\")"), "there is no file none.pam");
}

TEST(WrittenCall, IsParsed) {
    const WrittenCall call = readCall("vignette(shape: #ellipse, [1, (2)], theColor: rgb(0, 0, 0))");
    EXPECT_EQ(call.name, "vignette");
    ASSERT_EQ(call.arguments.size(), 3u);
    EXPECT_EQ(call.arguments[0].name, "shape");
    EXPECT_EQ(call.arguments[0].value, "#ellipse");
    EXPECT_EQ(call.arguments[1].name, "");
    EXPECT_EQ(call.arguments[1].value, "[1, (2)]");
    EXPECT_EQ(call.arguments[2].value, "rgb(0, 0, 0)");
    EXPECT_EQ(call.arguments[2].place.column, 47);
    EXPECT_TRUE(readCall("sepia").arguments.empty());
    EXPECT_TRUE(readCall("sepia()").arguments.empty());
}

TEST(WrittenCall, ReportsSyntaxErrors) {
    for (const char* text :
         {"", "(1)", "a(", "a(1", "a(1,", "a(1,)", "a() b", "a(x:)", "a(1 2)", "a([1)", "\"a\"(1)"})
        EXPECT_THROW(readCall(text), ScriptError) << text;
    try {
        readCall("tones(#warm, 1 +, 2)");
        FAIL();
    } catch (const ScriptError& error) {
        EXPECT_EQ(error.place().column, 17);
    }
}

TEST(SessionEvaluate, EndsWithAnErrorWhereAScriptWouldEnd) {
    Session session({});
    for (const char* text : {"halt()", "quit()", "abort()"})
        EXPECT_THROW(session.evaluate(text), ScriptError) << text;
    EXPECT_TRUE(session.close().none());
}

TEST(LeakReport, ListsUnreleasedObjects) {
    EXPECT_EQ((LeakReport{2, 1, 0, 0}.text()), "2 values, 1 lock");
    EXPECT_EQ(LeakReport{}.text(), "nothing");
}

}  // namespace
}  // namespace krl::player
