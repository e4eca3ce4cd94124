// A window with a text view. Writes the text that it holds to a file whenever it has changed.
// usage: typing_text_view TITLE FILE

#include <gtkmm.h>

#include <cstdio>
#include <fstream>

int main(int argc, char** argv) {
  if (argc != 3) return 64;
  const std::string title = argv[1];
  const std::string file = argv[2];
  int none = 1;
  const auto application = Gtk::Application::create(none, argv, "com.tapdeck.test.TextView",
                                                    Gio::APPLICATION_NON_UNIQUE);
  Gtk::Window window;
  window.set_title(title);
  window.set_default_size(900, 700);
  Gtk::ScrolledWindow scrolled;
  Gtk::TextView view;
  view.set_wrap_mode(Gtk::WRAP_CHAR);
  scrolled.add(view);
  window.add(scrolled);
  bool isWriting = false;
  view.get_buffer()->signal_changed().connect([&] {
    if (std::exchange(isWriting, true)) return;
    Glib::signal_idle().connect_once([&] {
      isWriting = false;
      {
        std::ofstream out(file + ".new", std::ios::binary);
        out << view.get_buffer()->get_text(true).raw();
      }
      std::rename((file + ".new").c_str(), file.c_str());
    });
  });
  window.show_all();
  view.grab_focus();
  return application->run(window);
}
