// One panel at a time, chosen by a tab.

const REMEMBERED = "tapdeck.tab";
const STEPS = { ArrowRight: 1, ArrowDown: 1, ArrowLeft: -1, ArrowUp: -1 };

/** Binds a tab list; a panel gets a "visibilitychange" event when it is shown or hidden. */
export function bindTabs(list, onChange) {
  const tabs = [...list.querySelectorAll("[role=tab]")];
  const panelOf = (tab) => document.getElementById(tab.getAttribute("aria-controls"));

  const select = (chosen) => {
    for (const tab of tabs) {
      tab.setAttribute("aria-selected", tab === chosen);
      tab.tabIndex = tab === chosen ? 0 : -1;
      const panel = panelOf(tab);
      panel.hidden = tab !== chosen;
      panel.dispatchEvent(new Event("visibilitychange"));
    }
    sessionStorage.setItem(REMEMBERED, chosen.id);
    onChange();
  };

  for (const tab of tabs) tab.addEventListener("click", () => select(tab));
  list.addEventListener("keydown", (event) => {
    const step = STEPS[event.key];
    if (!step) return;
    event.preventDefault();
    const from = tabs.indexOf(document.activeElement);
    const next = tabs[(from + step + tabs.length) % tabs.length];
    next.focus();
    select(next);
  });

  select(tabs.find(({ id }) => id === sessionStorage.getItem(REMEMBERED)) ?? tabs[0]);
  return (id) => select(document.getElementById(id));
}
