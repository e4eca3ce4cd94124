#include <gtest/gtest.h>
#include <gtkmm/main.h>

#include "Platform/Linux/Application/GtkConnection.h"
#include "Tests/Desktop/ApplicationProcess.h"

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  if (argc != 3) return 64;
  tapdeck::testing::hostProgram = argv[1];
  tapdeck::testing::callProgram = argv[2];
  tapdeck::connectGtk();
  Gtk::Main::init_gtkmm_internals();
  return RUN_ALL_TESTS();
}
