import sax from 'sax';
import { listOr, tableOr, textOr } from '../folder.js';

export function cargo(folder, file) {
  const manifest = folder.table(file, 'TOML');
  const pack = tableOr(manifest.package);
  const programs = folder
    .list('src/bin')
    .filter((name) => name.endsWith('.rs'))
    .map((name) => name.slice(0, -3));
  const named = listOr(manifest.bin)
    .map((bin) => textOr(bin?.name))
    .filter(Boolean);
  const other = [...named, ...programs];
  let command;
  // A bare library or workspace has nothing to run.
  if (folder.has('Trunk.toml')) command = 'trunk serve';
  else if (textOr(pack.name) && (folder.has('src/main.rs') || textOr(pack['default-run']))) command = 'cargo run';
  else if (textOr(pack.name) && other.length === 1) command = `cargo run --bin ${other[0]}`;
  return { name: textOr(pack.name), version: textOr(pack.version), command };
}

export function goModule(folder, file) {
  const line = folder
    .text(file)
    .split('\n')
    .find((text) => text.startsWith('module '));
  const name = line
    ?.slice('module '.length)
    .trim()
    .replace(/^"|"$/g, '')
    .replace(/\/v\d+$/, '')
    .split('/')
    .pop();
  const programs = folder.list('cmd').filter((entry) => folder.has(`cmd/${entry}/main.go`));
  const program = programs.length === 1 ? programs[0] : programs.find((entry) => entry === name);
  let command;
  if (folder.has('.air.toml')) command = 'air';
  else if (folder.has('main.go')) command = 'go run .';
  else if (program) command = `go run ./cmd/${program}`;
  return { name: textOr(name), command };
}

/** The texts and attributes of an XML document by their paths: "project/artifactId", "Project@Sdk". */
function xmlValues(text) {
  const values = new Map();
  const path = [];
  const keep = (key, value) => values.set(key, [...(values.get(key) ?? []), value]);
  const parser = sax.parser(true, { trim: true, position: false });
  // What has been read up to an error counts.
  parser.onerror = () => {};
  parser.onopentag = ({ name, attributes }) => {
    path.push(name);
    for (const [key, value] of Object.entries(attributes)) keep(`${path.join('/')}@${key}`, value);
  };
  parser.ontext = (content) => path.length < 12 && keep(path.join('/'), content);
  parser.onclosetag = () => path.pop();
  try {
    parser.write(text).close();
  } catch {
    // As above.
  }
  return { first: (key) => textOr(values.get(key)?.[0]), all: (key) => values.get(key) ?? [] };
}

const MAVEN_GOALS = [
  ['spring-boot-maven-plugin', 'Spring', 'spring-boot:run'],
  ['quarkus-maven-plugin', 'Quarkus', 'quarkus:dev'],
  ['micronaut-maven-plugin', 'Micronaut', 'mn:run'],
  ['jetty-maven-plugin', undefined, 'jetty:run'],
];

export function maven(folder, file) {
  const values = xmlValues(folder.text(file));
  const plugins = values.all('project/build/plugins/plugin/artifactId');
  const [, kind, goal] = MAVEN_GOALS.find(([plugin]) => plugins.includes(plugin)) ?? [];
  const version = values.first('project/version');
  return {
    kind,
    name: values.first('project/artifactId'),
    version: version?.includes('$') ? undefined : version,
    command: goal && `${folder.has('mvnw') ? './mvnw' : 'mvn'} ${goal}`,
  };
}

const GRADLE_TASKS = [
  ['org.springframework.boot', 'Spring', 'bootRun'],
  ['io.quarkus', 'Quarkus', 'quarkusDev'],
  ['io.micronaut.application', 'Micronaut', 'run'],
  ['io.ktor.plugin', 'Ktor', 'run'],
];
const APPLICATION = /^\s{0,20}(?:id[ (]{1,2}["']application["']\)?|application|`application`)\s{0,5}\{?\s{0,5}$/m;

export function gradle(folder, file) {
  const text = folder.text(file);
  const settings = folder.text('settings.gradle') || folder.text('settings.gradle.kts');
  const [, kind, task] = GRADLE_TASKS.find(([plugin]) => text.includes(plugin)) ?? [];
  const chosen = task ?? (APPLICATION.test(text) ? 'run' : undefined);
  return {
    kind,
    name: /^rootProject\.name ?= ?["']([^"'\n]{1,200})["']/m.exec(settings)?.[1],
    command: chosen && `${folder.has('gradlew') ? './gradlew' : 'gradle'} ${chosen}`,
  };
}

export function dotnet(folder, file) {
  const values = xmlValues(folder.text(file));
  const isWeb = /\.(Web|BlazorWebAssembly)$/.test(values.first('Project@Sdk') ?? '');
  const isProgram = isWeb || values.all('Project/PropertyGroup/OutputType').includes('Exe');
  return {
    kind: isWeb ? 'ASP.NET' : undefined,
    name: file.replace(/\.\w+$/, ''),
    version: values.first('Project/PropertyGroup/Version'),
    command: isProgram ? 'dotnet run' : undefined,
  };
}

export const solution = (_folder, file) => ({ name: file.replace(/\.\w+$/, '') });

export function swift(folder, file) {
  const text = folder.text(file);
  return {
    kind: text.includes('vapor/vapor') ? 'Vapor' : undefined,
    name: /\bname: ?"([^"\n]{1,200})"/.exec(text)?.[1],
    command: text.includes('.executableTarget(') ? 'swift run' : undefined,
  };
}

export function pubspec(folder, file) {
  const manifest = folder.table(file, 'YAML');
  const isFlutter = Object.hasOwn(tableOr(manifest.dependencies), 'flutter');
  const server = folder.has('bin/server.dart') ? 'dart run bin/server.dart' : undefined;
  return {
    kind: isFlutter ? 'Flutter' : undefined,
    name: textOr(manifest.name),
    version: textOr(manifest.version),
    command: isFlutter ? 'flutter run' : server,
  };
}

export function mix(folder, file) {
  const text = folder.text(file);
  const isPhoenix = /\{:phoenix,/.test(text);
  return {
    kind: isPhoenix ? 'Phoenix' : undefined,
    name: /\bapp: ?:(\w{1,200})/.exec(text)?.[1],
    version: /\bversion: ?"([^"\n]{1,100})"/.exec(text)?.[1],
    command: isPhoenix ? 'mix phx.server' : undefined,
  };
}

/** The inside of the first call of `name` in a text of CMake or Meson. */
function callOf(text, name) {
  const start = new RegExp(`^[ \\t]{0,40}${name}[ \\t]{0,10}\\(`, 'im').exec(text);
  if (!start) return '';
  const inside = text.slice(start.index + start[0].length, start.index + start[0].length + 2000);
  return inside.slice(0, Math.max(inside.indexOf(')'), 0));
}

export function cmake(folder, file) {
  const words = callOf(folder.text(file), 'project').split(/\s+/).filter(Boolean);
  const name = words[0]?.replace(/^"|"$/g, '');
  const version = words[words.findIndex((word) => word.toUpperCase() === 'VERSION') + 1];
  return {
    name: name && !name.includes('$') ? name : undefined,
    version: words.length > 1 && /^"?[\d.]+"?$/.test(version ?? '') ? version.replaceAll('"', '') : undefined,
  };
}

export function meson(folder, file) {
  const call = callOf(folder.text(file), 'project');
  return {
    name: /^\s{0,40}'([^'\n]{1,200})'/.exec(call)?.[1],
    version: /\bversion ?: ?'([^'\n]{1,100})'/.exec(call)?.[1],
  };
}
