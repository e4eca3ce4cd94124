tell application "Music"
  try
    set t to current track
    set n to name of t
  on error
    return "none"
  end try
  set ar to ""
  set al to ""
  set dur to 0
  set p to 0
  set tid to ""
  try
    set ar to artist of t
  end try
  try
    set al to album of t
  end try
  try
    set dur to duration of t
  end try
  try
    set p to player position
  end try
  try
    set tid to persistent ID of t as text
  end try
  set pstate to "paused"
  try
    if player state is playing then set pstate to "playing"
  end try
  return n & tab & ar & tab & al & tab & (dur as text) & tab ¬
    & (p as text) & tab & pstate & tab & tid
end tell
