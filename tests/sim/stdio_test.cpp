// The stdio harness, run as users script it: the real executable, lines in, lines out.

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include <unistd.h>

namespace {

// Runs sondar-sim with the arguments, feeding it `input`; returns its output lines.
std::vector<std::string> run_sim(const std::string& args, const std::string& input, int* status = nullptr)
{
    // One file per test and process: CTest runs the tests of this binary side by side.
    const std::string in_path = testing::TempDir() + "sim_input_" +
                                testing::UnitTest::GetInstance()->current_test_info()->name() + "_" +
                                std::to_string(getpid()) + ".txt";
    std::ofstream(in_path) << input;
    const std::string command = std::string(SONDAR_SIM) + " " + args + " < " + in_path + " 2>/dev/null";
    FILE* pipe = popen(command.c_str(), "r");
    std::vector<std::string> lines;
    std::string line;
    for (int c; (c = std::fgetc(pipe)) != EOF;) {
        if (c == '\n') {
            lines.push_back(line);
            line.clear();
        } else {
            line += char(c);
        }
    }
    const int rc = pclose(pipe);
    std::remove(in_path.c_str());
    if (status)
        *status = WEXITSTATUS(rc);
    return lines;
}

TEST(SimStdio, OneLineOutPerLineIn)
{
    int status = -1;
    auto lines = run_sim("--stdio --model tolvan",
                         "<arvex>&query;</arvex>\n"
                         "<arvex><tolvan><name>&query_item;</name></tolvan></arvex>\n"
                         "<arvex><tolvan><name>lab bench</name></tolvan></arvex>\n"
                         "<arvex><tolvan><name>&query_item;</name></tolvan></arvex>\n"
                         "<arvex><tolvan><output><rate>fast</rate></output></tolvan></arvex>\n",
                         &status);
    EXPECT_EQ(status, 0);
    ASSERT_EQ(lines.size(), 5u);
    EXPECT_EQ(lines[0].rfind("<arvex><tolvan><ver/><name/>", 0), 0u) << lines[0];
    EXPECT_EQ(lines[0].substr(lines[0].size() - 17), "</tolvan></arvex>");
    EXPECT_EQ(lines[1], "");
    EXPECT_EQ(lines[2], "");
    EXPECT_EQ(lines[3], "lab bench");
    // The line end that ends a choice error stays on the line as \n.
    EXPECT_EQ(lines[4], "<Error Param=\"rate\">invalid option: fast\\n</Error>");
}

TEST(SimStdio, MorvikAndSarnelShareTheMorvikDocument)
{
    for (const char* model : {"morvik", "sarnel"}) {
        auto lines = run_sim(std::string("--stdio --model ") + model,
                             "<arvex><morvik><factory><serialnumber>&query_item;</serialnumber></factory></morvik></arvex>\n"
                             "<arvex><sarnel><name>&query_item;</name></sarnel></arvex>\n"
                             "<arvex>&query_changes;</arvex>\n");
        ASSERT_EQ(lines.size(), 3u) << model;
        EXPECT_EQ(lines[0], "ch4-base-XXXX");
        EXPECT_EQ(lines[1], "");
        // Nothing clears the flags, so a fresh document answers with all of it.
        EXPECT_EQ(lines[2].rfind("<arvex><morvik><ver/>", 0), 0u) << lines[2];
    }
}

}  // namespace
