// One call of every tool, in an order in which each finds what it needs, and what must be in
// its result.
const plan = { drive: 'Studio', path: 'Plans/Harbour plan.md' };
const content = 'Start with the east quay \u2014 it floods first.\n';

export const calls = [
  ['drive_status', {}, ({ drives }) => drives.length === 2 && drives[0].name === 'Studio'],
  ['search_drives', { query: 'HARBOUR' }, ({ results }) => results[0].path === plan.path],
  ['list_directory', { drive: 'Studio', path: 'Plans' }, ({ entries }) => entries.length === 1],
  ['get_file_info', plan, ({ bytes, downloaded }) => bytes === 26 && downloaded === true],
  ['write_file', { ...plan, content, dry_run: false }, ({ action }) => action === 'replace'],
  ['read_file', plan, (result) => result.content === content],
  [
    'transfer_file',
    { from_drive: 'Studio', path: plan.path, to_drive: 'Archive', to_folder: 'Copies' },
    (result) => result.to_path === 'Copies/Harbour plan.md',
  ],
  ['recent_changes', { limit: 2 }, ({ changes }) => changes.length === 2],
  ['find_duplicates', { minimum_bytes: 1000 }, ({ groups }) => groups[0].name === 'panorama.raw'],
  ['storage_summary', { limit: 1 }, ({ drives }) => drives[1].largest_files.length === 1],
  ['propose_cleanup', {}, ({ stale_files }) => stale_files[0].path === 'old recording.wav'],
];

export const refusedCall = ['read_file', { drive: 'Studio', path: '../elsewhere.txt' }];
export const refusal = '"../elsewhere.txt" leads out of the drive "Studio".';
export const notStarted =
  'Quillmark could not be started. Open it once from Applications, then try again.';
