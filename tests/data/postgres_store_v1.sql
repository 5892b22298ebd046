-- A store in PostgreSQL as version 1 had it: no data sets. Two samples are packed, one waits.
create table meta (name text not null primary key, value bigint not null);
insert into meta values ('version', 1), ('store', 4711), ('series', 4), ('pack', 0);
create table series (id bigint not null primary key, variable text not null unique, info_code integer not null);
create table sample (series bigint not null, time bigint not null, value double precision not null,
  primary key (series, time));
create table block (series bigint not null references series (id), hour bigint not null, samples integer not null,
  first_time bigint not null, last_time bigint not null, minimum double precision not null,
  maximum double precision not null, total double precision not null, first_value double precision not null,
  last_value double precision not null, flags smallint not null, codec smallint not null, checksum integer not null,
  payload bytea not null, primary key (series, hour));
insert into series values (4, 'Meter 1.U1', 1);
insert into block values (4, 288888, 2, 1039996800000000, 1039996860000000, 230.1, 230.3, 460.4, 230.1, 230.3, 3, 3,
  -2062617704, '\x010200007801fa2304');
insert into sample values (4, 1040000400000000, 229.9);
