tell application "Spotify"
  try
    if player state is stopped then return "none"
    set t to current track
    set pstate to "paused"
    if player state is playing then set pstate to "playing"
    return (name of t) & tab & (artist of t) & tab & (album of t) & tab ¬
      & ((duration of t) as text) & tab & ((player position) as text) & tab ¬
      & pstate & tab & (id of t as text)
  on error
    return "none"
  end try
end tell
